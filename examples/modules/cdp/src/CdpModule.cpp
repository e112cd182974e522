#include "CdpModule.hpp"

#include <algorithm>
#include <cmath>
#include <unordered_set>
#include <utility>
#include <vector>

#include "EventJson.hpp"

namespace cdp {
namespace {

using vorn::LoggerCategory;
using namespace std::chrono_literals;

constexpr std::string_view kPrefsName = "cdp";
constexpr std::string_view kEventsFileName = "events";
constexpr std::string_view kQueueLabel = "cdp.CdpModule";
// Our deadlines come from the steady clock, the network manager's from the wall clock:
// waking a little late keeps a retry from meeting a block that has not quite ended.
constexpr auto kDeadlineMargin = 50ms;
constexpr double kMaxDelaySeconds = 86400;

std::chrono::nanoseconds delayOf(double seconds) {
  if (!(seconds > 0))
    return 0ns;
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
      std::chrono::duration<double>(std::min(seconds, kMaxDelaySeconds)));
}

// Builds the line only when it would be written.
template <class Text>
void debug(vorn::ModuleLogger& logger, LoggerCategory category, Text text) {
  if (vorn::ModuleLogger::enabled(vorn::LogLevel::debug, category))
    logger.d(category, text());
}

std::string jsonText(const nlohmann::json& json) {
  return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::filesystem::path eventsPath(const CdpModuleConfig& config,
                                 const vorn::StorageManager& storage) {
  return config.dataDirectory() / "cdp" / storage.getFilenameForModuleInstallation(kEventsFileName);
}

}  // namespace

std::shared_ptr<vorn::VORNModule> CdpModule::initModule(
    const std::shared_ptr<const vorn::ModuleConfig>& config,
    const std::shared_ptr<vorn::VORNSdkComponents>& components) {
  auto logger =
      std::make_shared<vorn::ModuleLogger>(vorn::ModuleName::cdp, std::vector<std::string>{});
  auto cdpConfig = std::dynamic_pointer_cast<const CdpModuleConfig>(config);
  if (!cdpConfig || !components || !components->storageManager() ||
      !components->encryptionManager()) {
    logger->e(LoggerCategory::module,
              "The cdp module needs a CdpModuleConfig and its components. Not started.");
    return nullptr;
  }
  auto module = std::make_shared<CdpModule>(std::move(cdpConfig), components, std::move(logger));
  if (!module->start())
    return nullptr;
  return module;
}

CdpModule::CdpModule(std::shared_ptr<const CdpModuleConfig> config,
                     std::shared_ptr<vorn::VORNSdkComponents> components,
                     std::shared_ptr<vorn::ModuleLogger> logger)
    : config_(std::move(config)),
      components_(std::move(components)),
      logger_(std::move(logger)),
      profile_(components_->storageManager()->getOrCreateSecurePrefs(kPrefsName)),
      file_(eventsPath(*config_, *components_->storageManager()), components_->encryptionManager(),
            logger_, config_->settings().syncWrites),
      queue_(std::string(kQueueLabel)) {}

CdpModule::~CdpModule() {
  if (observer_)
    components_->behaviorManager()->removeObserver(observer_.get());
}

bool CdpModule::start() {
  EventQueueFile::Loaded loaded;
  if (!file_.open(loaded)) {
    logger_->e(LoggerCategory::module, "The cdp module cannot use its events file. Not started.");
    return false;
  }
  logger_->setRedactedValues(profile_.secrets());
  network_ = components_->createNetworkManager(nullptr);
  observer_ = std::make_shared<BackgroundObserver>([weak = weak_from_this()] {
    if (auto self = weak.lock())
      self->onBackgrounded();
  });
  components_->behaviorManager()->addObserver(observer_);

  std::lock_guard lock(mutex_);
  dropped_ = static_cast<std::int64_t>(loaded.skipped);
  events_.assign(std::make_move_iterator(loaded.events.begin()),
                 std::make_move_iterator(loaded.events.end()));
  if (!events_.empty()) {
    debug(*logger_, LoggerCategory::event, [&] {
      return "Uploading " + std::to_string(events_.size()) + " events queued by the last run.";
    });
    scheduleFlush();
  }
  return true;
}

void CdpModule::tearDown() {
  {
    std::lock_guard lock(mutex_);
    if (tornDown_)
      return;
    tornDown_ = true;
    cancelTimer();
  }
  if (observer_)
    components_->behaviorManager()->removeObserver(observer_.get());
  queue_.sync([] {});  // lets an upload under way end and record its outcome
  std::lock_guard lock(mutex_);
  file_.close();
  debug(*logger_, LoggerCategory::module, [] { return std::string("Module torn down."); });
}

vorn::Dictionary CdpModule::stateProperties() const {
  std::lock_guard lock(mutex_);
  return {{"consent", vorn::Value(vorn::rawValue(profile_.consent()))},
          {"queuedEvents", vorn::Value(events_.size())},
          {"uploadedEvents", vorn::Value(uploaded_)},
          {"droppedEvents", vorn::Value(dropped_)}};
}

std::shared_ptr<vorn::Subscriber> CdpModule::asSubscriber() {
  return shared_from_this();
}

std::optional<vorn::ModuleIdentity> CdpModule::getIdentity() {
  vorn::ModuleIdentity identity;
  identity.applicationId = config_->appId();
  identity.profileId = profile_.profileId();
  if (auto installation = components_->storageManager()->getRegistrationId(); !installation.empty())
    identity.installationId = std::move(installation);
  if (const auto attributes = profile_.attributes(); !attributes.empty()) {
    vorn::Dictionary properties;
    for (const auto& [key, value] : attributes)
      properties.emplace(key, vorn::Value(value));
    identity.customProperties = vorn::Value(std::move(properties));
  }
  return identity;
}

vorn::Consent CdpModule::getConsent() {
  return profile_.consent();
}

void CdpModule::setConsent(vorn::Consent consent) {
  std::lock_guard lock(mutex_);
  profile_.setConsent(consent);
  debug(*logger_, LoggerCategory::consent,
        [&] { return "Consent set to " + std::string(vorn::rawValue(consent)) + "."; });
  if (consent != vorn::Consent::optOut || tornDown_)
    return;
  const auto deleted = events_.size();
  dropped_ += static_cast<std::int64_t>(deleted);
  events_.clear();
  cancelTimer();
  rewriteFile();
  debug(*logger_, LoggerCategory::consent,
        [&] { return "Deleted " + std::to_string(deleted) + " queued events after opt_out."; });
}

void CdpModule::setLocation(const std::optional<vorn::Coordinates>& coordinates,
                            std::int64_t expiresIn) {
  std::lock_guard lock(mutex_);
  if (!coordinates || expiresIn <= 0) {
    location_.reset();
    debug(*logger_, LoggerCategory::location, [] { return std::string("Location cleared."); });
    return;
  }
  location_ = Location{*coordinates,
                       std::chrono::steady_clock::now() + delayOf(static_cast<double>(expiresIn))};
  debug(*logger_, LoggerCategory::location,
        [&] { return "Location set for " + std::to_string(expiresIn) + " s."; });
}

void CdpModule::receive(std::shared_ptr<const vorn::Message> message) {
  if (!message)
    return;
  if (auto identity = std::dynamic_pointer_cast<const vorn::IdentityEvent>(message->fromEvent()))
    return applyIdentity(*identity);
  if (message->category() != vorn::rawValue(vorn::EventCategory::engagement)) {
    debug(*logger_, LoggerCategory::event,
          [&] { return "Message `" + message->name() + "` ignored: not an engagement event."; });
    return;
  }
  enqueue(*message);
}

void CdpModule::applyIdentity(const vorn::IdentityEvent& event) {
  // One section, so that the redaction list always covers what the last event stored.
  std::lock_guard lock(identityMutex_);
  profile_.apply(event);
  logger_->setRedactedValues(profile_.secrets());
  if (event.profileId()) {
    debug(*logger_, LoggerCategory::identity,
          [&] { return "Profile id set to `" + *event.profileId() + "`."; });
  } else {
    debug(*logger_, LoggerCategory::identity, [&] {
      return "Profile attributes set to " + jsonText(nlohmann::json(profile_.attributes())) + ".";
    });
  }
}

void CdpModule::enqueue(const vorn::Message& message) {
  auto sealed = file_.seal(message.id(), jsonText(eventJson(message)));
  std::lock_guard lock(mutex_);
  if (tornDown_) {
    debug(*logger_, LoggerCategory::event,
          [&] { return "Event `" + message.name() + "` ignored: module torn down."; });
    return;
  }
  if (profile_.consent() == vorn::Consent::optOut || !sealed) {
    ++dropped_;
    debug(*logger_, LoggerCategory::event, [&] {
      return "Event `" + message.name() +
             "` dropped: " + (sealed ? "consent is opt_out." : "it could not be encrypted.");
    });
    return;
  }
  persist(std::move(*sealed));
  debug(*logger_, LoggerCategory::event, [&] {
    return "Event `" + message.name() + "` queued (" + std::to_string(events_.size()) +
           " waiting).";
  });
  if (events_.size() >= std::max<std::size_t>(config_->settings().batchSize, 1))
    scheduleFlush();
  else if (!timerDue_)
    armTimer(delayOf(config_->settings().flushIntervalSeconds));
}

void CdpModule::persist(QueuedEvent event) {
  events_.push_back(std::move(event));
  if (!file_.append(events_.back()))
    rewriteFile();
}

void CdpModule::onBackgrounded() {
  std::lock_guard lock(mutex_);
  if (events_.empty())
    return;
  debug(*logger_, LoggerCategory::behavior, [&] {
    return "App backgrounded: uploading " + std::to_string(events_.size()) + " events.";
  });
  scheduleFlush();
}

void CdpModule::scheduleFlush() {
  if (tornDown_ || flushPending_)
    return;
  flushPending_ = true;
  queue_.async([weak = weak_from_this()] {
    if (auto self = weak.lock())
      self->flush();
  });
}

void CdpModule::flush() {
  {
    std::lock_guard lock(mutex_);
    flushPending_ = false;
  }
  for (;;) {
    std::optional<nlohmann::json> location;
    const auto batch = nextBatch(location);
    if (!batch)
      return;
    std::vector<std::string> records;
    for (const auto& event : *batch)
      records.push_back(event.json);
    debug(*logger_, LoggerCategory::network,
          [&] { return "Uploading " + std::to_string(records.size()) + " events."; });
    const auto outcome = postBatch(*network_, config_->settings(), records, location);
    if (!settle(*batch, outcome))
      return;
  }
}

std::optional<std::vector<QueuedEvent>> CdpModule::nextBatch(
    std::optional<nlohmann::json>& location) {
  std::lock_guard lock(mutex_);
  if (tornDown_ || events_.empty()) {
    cancelTimer();
    return std::nullopt;
  }
  const auto now = std::chrono::steady_clock::now();
  if (blockedUntil_ && now < *blockedUntil_) {
    armTimer(*blockedUntil_ - now);
    return std::nullopt;
  }
  const auto size =
      std::min(events_.size(), std::max<std::size_t>(config_->settings().batchSize, 1));
  std::vector<QueuedEvent> batch;
  for (std::size_t i = 0; i < size; ++i)
    batch.push_back({events_[i].id, events_[i].json, {}});
  location = currentLocation();
  return batch;
}

bool CdpModule::settle(const std::vector<QueuedEvent>& batch, const UploadOutcome& outcome) {
  std::lock_guard lock(mutex_);
  const auto now = std::chrono::steady_clock::now();
  if (outcome.accepted) {
    removeUploaded(batch);
    uploaded_ += static_cast<std::int64_t>(batch.size());
    const auto rateLimit = delayOf(std::floor(config_->settings().rateLimitSeconds));
    if (rateLimit > 0ns)
      blockedUntil_ = now + rateLimit + kDeadlineMargin;
    debug(*logger_, LoggerCategory::network, [&] {
      return "Uploaded " + std::to_string(batch.size()) + " events (" +
             std::to_string(events_.size()) + " waiting).";
    });
    return !tornDown_;
  }
  std::chrono::nanoseconds delay = delayOf(config_->settings().flushIntervalSeconds);
  if (outcome.retryAfter) {
    delay = *outcome.retryAfter + kDeadlineMargin;
    blockedUntil_ = now + delay;
  }
  debug(*logger_, LoggerCategory::network, [&] {
    return "Upload of " + std::to_string(batch.size()) + " events failed (" + outcome.description +
           "). Retrying in " +
           std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(delay).count()) +
           " ms.";
  });
  armTimer(delay);
  return false;
}

void CdpModule::removeUploaded(const std::vector<QueuedEvent>& batch) {
  std::unordered_set<std::string> ids;
  for (const auto& event : batch)
    ids.insert(event.id);
  const auto before = events_.size();
  std::erase_if(events_, [&](const QueuedEvent& event) { return ids.contains(event.id); });
  if (events_.size() != before)
    rewriteFile();
}

std::optional<nlohmann::json> CdpModule::currentLocation() const {
  if (!location_ || std::chrono::steady_clock::now() >= location_->expiresAt)
    return std::nullopt;
  return nlohmann::json{{"latitude", location_->coordinates.latitude},
                        {"longitude", location_->coordinates.longitude}};
}

void CdpModule::armTimer(std::chrono::nanoseconds delay) {
  if (tornDown_)
    return;
  const auto due = std::chrono::steady_clock::now() + delay;
  if (timerDue_ && *timerDue_ <= due)
    return;
  timerDue_ = due;
  // The timer that is replaced is called off, so that it does not wake the process for
  // nothing; the generation still tells a timer already on its way that it is stale.
  timer_.cancel();
  const std::uint64_t generation = ++timerGeneration_;
  timer_ = vorn::DelayedWork::schedule(delay, queue_, [weak = weak_from_this(), generation] {
    if (auto self = weak.lock())
      self->onTimer(generation);
  });
}

void CdpModule::onTimer(std::uint64_t generation) {
  {
    std::lock_guard lock(mutex_);
    if (generation != timerGeneration_ || tornDown_)
      return;
    timerDue_.reset();
  }
  flush();
}

void CdpModule::cancelTimer() {
  timerDue_.reset();
  ++timerGeneration_;
  timer_.cancel();
}

bool CdpModule::rewriteFile() {
  std::vector<const QueuedEvent*> events;
  for (const auto& event : events_)
    events.push_back(&event);
  return file_.rewrite(events);
}

}  // namespace cdp

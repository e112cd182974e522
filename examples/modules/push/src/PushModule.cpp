// The push module's life cycle, its state snapshot and the sending of its registration.
#include "PushModule.hpp"

#include <algorithm>

#include "PushRequests.hpp"
#include "vorn/platform/Platform.hpp"

namespace push {
namespace {

constexpr std::string_view kPrefsName = "push";

std::shared_ptr<vorn::SecurePrefs> modulePrefs(const vorn::VORNSdkComponents& components) {
  const auto& storage = components.storageManager();
  return storage ? storage->getOrCreateSecurePrefs(kPrefsName) : nullptr;
}

std::shared_ptr<PushAuthenticator> makeAuthenticator(const PushSettings& settings,
                                                     const vorn::VORNSdkComponents& components,
                                                     std::shared_ptr<vorn::SecurePrefs> prefs,
                                                     std::shared_ptr<PushLog> log) {
  return std::make_shared<PushAuthenticator>(
      settings.endpoint, components.storageManager(), std::move(prefs),
      components.createNetworkManager(nullptr), std::move(log));
}

std::int64_t storedMillis(const vorn::SecurePrefs& prefs, const std::string& key) {
  return prefs.intFor(key).value_or(0);
}

// The contact key and the attributes are the app's profile values, kept out of the log as the
// tokens are.
void redactProfile(PushLog& log, const RegistrationData& data) {
  if (data.contactKey)
    log.redact(*data.contactKey);
  for (const auto& [key, value] : data.attributes)
    if (const std::string* text = value.get<std::string>())
      log.redact(*text);
}

}  // namespace

std::shared_ptr<PushModule> PushModule::start(const PushModuleConfig& config,
                                              std::shared_ptr<vorn::VORNSdkComponents> components) {
  auto module = std::make_shared<PushModule>(Passkey{}, config, std::move(components));
  module->begin();
  return module;
}

PushModule::PushModule(Passkey, const PushModuleConfig& config,
                       std::shared_ptr<vorn::VORNSdkComponents> components)
    : appId_(config.appId()),
      settings_(config.settings()),
      components_(std::move(components)),
      log_(std::make_shared<PushLog>()),
      prefs_(modulePrefs(*components_)),
      authenticator_(makeAuthenticator(settings_, *components_, prefs_, log_)),
      network_(components_->createNetworkManager(authenticator_)),
      registration_(prefs_) {}

PushModule::~PushModule() = default;

void PushModule::begin() {
  log_->redact(registrationId());
  if (const auto token = registration_.data().deviceToken)
    log_->redact(*token);
  observer_ = std::make_shared<PushBehaviorObserver>(weak_from_this());
  subscriber_ = std::make_shared<PushSubscriber>(weak_from_this());
  if (registration_.dirty())
    scheduleSend();
  components_->behaviorManager()->addObserver(observer_);
  log_->debug("Push module started.");
}

void PushModule::tearDown() {
  if (tornDown_.exchange(true))
    return;
  components_->behaviorManager()->removeObserver(observer_.get());
  cancelRetry();
  log_->debug("Push module torn down.");
}

vorn::Dictionary PushModule::stateProperties() const {
  return {{"registered", registration_.registered()},
          {"registrationsSent", registrationsSent_.load()},
          {"inboxMessages", inbox_.allCount()},
          {"tokenRefreshes", authenticator_->refreshes()},
          {"tags", registration_.data().tags.size()}};
}

std::shared_ptr<vorn::Subscriber> PushModule::asSubscriber() {
  return subscriber_;
}

void PushModule::onForeground() {
  if (isInboxEnabled())
    refreshMessages();
  if (registration_.dirty())
    scheduleSend();
}

void PushModule::onAppVersionChanged() {
  registration_.markDirty();
  scheduleSend();
}

void PushModule::enqueue(std::function<void(PushModule&)> work) {
  queue_.async([weak = weak_from_this(), work = std::move(work)] {
    const std::shared_ptr<PushModule> self = weak.lock();
    if (self && !self->tornDown_.load())
      work(*self);
  });
}

bool PushModule::updateRegistration(const std::function<void(RegistrationData&)>& change) {
  if (!registration_.update(change))
    return false;
  scheduleSend();
  return true;
}

void PushModule::scheduleSend() {
  if (tornDown_.load() || sendQueued_.exchange(true))
    return;
  enqueue([](PushModule& module) {
    module.sendQueued_.store(false);
    module.sendRegistration();
  });
}

void PushModule::sendRegistration() {
  const std::optional<Registration::Snapshot> snapshot = registration_.pending();
  if (!snapshot)
    return;
  const vorn::Dictionary body =
      registrationBody(snapshot->data, registrationId(), vorn::Platform::current()->app.appVersion);
  auto request =
      requests::registration(settings_.endpoint, body, settings_.registrationRateLimitSeconds);
  if (!request)
    return;
  redactProfile(*log_, snapshot->data);
  log_->debug("Sending registration " + vorn::toJson(body).dump() + ".");
  const vorn::CompletedCall call = network_->executeSync(std::move(*request));
  if (!call.wrappedResponse.isSuccess()) {
    log_->debug("Registration not accepted: " + requests::outcome(call) + ".");
    retryAtDeadline();
    return;
  }
  cancelRetry();
  registration_.accepted(snapshot->version);
  ++registrationsSent_;
  log_->debug("Registration accepted.");
  RegistrationCallback callback;
  {
    std::lock_guard lock(mutex_);
    callback = registrationCallback_;
  }
  if (callback && !tornDown_.load())
    callback(body);
}

// The network manager keeps its deadlines in the module's network preferences; when one lies
// ahead for the registration, one retry is queued for the moment it passes.
void PushModule::retryAtDeadline() {
  const auto& prefs = network_->networkPreferences();
  if (!prefs)
    return;
  const std::int64_t deadline = std::max(storedMillis(*prefs, "retry_server_push_registration"),
                                         storedMillis(*prefs, "retry_device_push_registration"));
  const std::int64_t now = vorn::Platform::current()->clock->nowMillis();
  if (deadline <= now || retryQueued_.exchange(true))
    return;
  log_->debug("Registration retried in " + std::to_string((deadline - now + 999) / 1000) +
              " seconds.");
  // A DelayedWork, so a retry that a success or the teardown made moot never wakes the
  // process.
  const auto retry = vorn::DelayedWork::schedule(
      std::chrono::milliseconds(deadline - now + 1), queue_, [weak = weak_from_this()] {
        const std::shared_ptr<PushModule> self = weak.lock();
        if (!self || self->tornDown_.load())
          return;
        self->retryQueued_.store(false);
        self->scheduleSend();
      });
  std::lock_guard lock(mutex_);
  retry_ = retry;
  // tearDown() sets the flag before it takes the lock to cancel.
  if (tornDown_.load())
    retry_.cancel();
}

void PushModule::cancelRetry() {
  {
    std::lock_guard lock(mutex_);
    retry_.cancel();
  }
  retryQueued_.store(false);
}

std::string PushModule::registrationId() const {
  const auto& storage = components_->storageManager();
  std::string id = storage ? storage->getRegistrationId() : std::string();
  log_->redact(id);
  return id;
}

void PushModule::unavailable(std::string_view line, vorn::LoggerCategory category) const {
  log_->debug(line, category);
}

}  // namespace push

#include "vorn/behavior/BehaviorManager.hpp"

#include <algorithm>
#include <optional>

#include "vorn/logging/Log.hpp"
#include "vorn/runtime/Atomic.hpp"

namespace vorn {
namespace {

constexpr std::string_view kNotTaken =
    "onBehavior() couldn't be triggered, because observer is missing a type or type is not "
    "supported.";

// What setup() stored; never destroyed, so a late setup() during exit finds it.
Atomic<std::optional<BehaviorManagerConfig>>& storedConfig() {
  static auto* cell = new Atomic<std::optional<BehaviorManagerConfig>>();
  return *cell;
}

bool screenTrackingOn(const BehaviorManagerConfig& config) {
  return config.enableScreenEntryTracking.value_or(true);
}

bool wants(const std::set<int>& types, const Behavior& behavior) {
  return types.contains(rawValue(behavior.type()));
}

}  // namespace

std::shared_ptr<BehaviorManager> BehaviorManager::shared() {
  // Never destroyed, so a notification posted during exit never finds the manager gone.
  static const auto* manager = new std::shared_ptr<BehaviorManager>(
      create(storedConfig().read().value_or(BehaviorManagerConfig{}),
             NotificationCenter::defaultCenter(), nullptr));
  return *manager;
}

void BehaviorManager::setup(BehaviorManagerConfig config) {
  storedConfig().mutate([&](auto& stored) { stored = config; });
}

std::shared_ptr<BehaviorManager> BehaviorManager::create(
    BehaviorManagerConfig config, std::shared_ptr<NotificationCenter> center,
    std::shared_ptr<VORNKeyStoreManager> keyStore) {
  auto manager = std::make_shared<BehaviorManager>(PrivateTag{}, screenTrackingOn(config),
                                                   std::move(center), std::move(keyStore));
  manager->behaviorWatcher_->start();
  manager->behaviorWatcher_->setDelegate(manager);
  return manager;
}

BehaviorManager::BehaviorManager(PrivateTag, bool enableScreenTracking,
                                 std::shared_ptr<NotificationCenter> center,
                                 std::shared_ptr<VORNKeyStoreManager> keyStore)
    : behaviorWatcher_(std::make_shared<BehaviorWatcher>(enableScreenTracking, std::move(center),
                                                         std::move(keyStore))) {}

BehaviorManager::~BehaviorManager() = default;

void BehaviorManager::addObserver(const std::shared_ptr<BehaviorObserver>& observer) {
  if (!observer)
    return;
  std::vector<std::shared_ptr<const Behavior>> sticky;
  {
    std::lock_guard lock(mutex_);
    observations_[observer.get()] = Observation{observer};
    sticky = stickyBehaviors_;
  }
  const auto types = observer->behaviorTypesToObserve();
  for (const auto& behavior : sticky) {
    if (wants(types, *behavior))
      observer->onBehavior(behavior);
    else
      VORN_LOG_WARNING(LoggerCategory::behavior, kNotTaken);
  }
}

void BehaviorManager::removeObserver(const BehaviorObserver* observer) {
  std::lock_guard lock(mutex_);
  observations_.erase(observer);
}

void BehaviorManager::deliver(const std::shared_ptr<const Behavior>& behavior) {
  if (!behavior)
    return;
  for (const auto& observer : liveObserversRecording(behavior)) {
    if (wants(observer->behaviorTypesToObserve(), *behavior))
      observer->onBehavior(behavior);
  }
}

std::vector<std::shared_ptr<BehaviorObserver>> BehaviorManager::liveObserversRecording(
    const std::shared_ptr<const Behavior>& behavior) {
  std::vector<std::shared_ptr<BehaviorObserver>> live;
  std::lock_guard lock(mutex_);
  for (auto entry = observations_.begin(); entry != observations_.end();) {
    auto observer = entry->second.observer.lock();
    if (!observer) {
      entry = observations_.erase(entry);
      continue;
    }
    live.push_back(std::move(observer));
    applyStickyEffect(behavior);
    ++entry;
  }
  return live;
}

void BehaviorManager::applyStickyEffect(const std::shared_ptr<const Behavior>& behavior) {
  switch (behavior->type()) {
    case BehaviorType::appForegrounded:
    case BehaviorType::appVersionChanged:
      stickyBehaviors_.push_back(behavior);
      break;
    case BehaviorType::appBackgrounded:
      std::erase_if(stickyBehaviors_,
                    [](const auto& kept) { return kept->type() == BehaviorType::appForegrounded; });
      break;
    case BehaviorType::screenEntry:
      break;
  }
}

std::vector<std::shared_ptr<const Behavior>> BehaviorManager::stickyBehaviors() const {
  std::lock_guard lock(mutex_);
  return stickyBehaviors_;
}

std::size_t BehaviorManager::observationCount() const {
  std::lock_guard lock(mutex_);
  return observations_.size();
}

}  // namespace vorn

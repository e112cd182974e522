#include "vorn/behavior/BehaviorWatcher.hpp"

#include "vorn/behavior/ApplicationNotifications.hpp"
#include "vorn/logging/Log.hpp"

namespace vorn {

BehaviorWatcher::BehaviorWatcher(bool enableScreenTracking,
                                 std::shared_ptr<NotificationCenter> center,
                                 std::shared_ptr<VORNKeyStoreManager> keyStore)
    : enableScreenTracking_(enableScreenTracking),
      center_(std::move(center)),
      keyStore_(std::move(keyStore)) {}

BehaviorWatcher::~BehaviorWatcher() = default;

void BehaviorWatcher::start() {
  {
    std::lock_guard lock(mutex_);
    if (started_)
      return;
    started_ = true;
  }
  VORN_LOG_DEBUG(LoggerCategory::behavior, "Behavior listening started.");
  if (enableScreenTracking_) {
    VORN_LOG_DEBUG(LoggerCategory::behavior, "ScreenEntry tracking enabled");
    swizzleViewDidAppearForScreenTracking();
  }
  listen(kApplicationWillEnterForegroundNotification,
         [](BehaviorWatcher& watcher, const Notification&) { watcher.didEnterForeground(); });
  listen(kApplicationDidEnterBackgroundNotification,
         [](BehaviorWatcher& watcher, const Notification&) { watcher.didEnterBackground(); });
  listen(kApplicationDidBecomeActiveNotification,
         [](BehaviorWatcher& watcher, const Notification&) { watcher.onUpgrade(); });
  listen(kScreenDidAppearNotification,
         [](BehaviorWatcher& watcher, const Notification& notification) {
           watcher.screenChanged(notification);
         });
}

template <class Handler>
void BehaviorWatcher::listen(std::string_view name, Handler handler) {
  // Weakly: the centre may outlive the watcher, and a call under way keeps the watcher alive
  // until it returns.
  std::weak_ptr<BehaviorWatcher> weak = weak_from_this();
  auto token = center_->addObserver(name, [weak, handler](const Notification& notification) {
    if (const auto watcher = weak.lock())
      handler(*watcher, notification);
  });
  std::lock_guard lock(mutex_);
  tokens_.push_back(std::move(token));
}

void BehaviorWatcher::setDelegate(const std::shared_ptr<BehaviorDelegate>& delegate) {
  std::lock_guard lock(mutex_);
  delegate_ = delegate;
}

std::shared_ptr<BehaviorDelegate> BehaviorWatcher::delegate() const {
  std::lock_guard lock(mutex_);
  return delegate_.lock();
}

void BehaviorWatcher::didEnterForeground() {
  VORN_LOG_DEBUG(LoggerCategory::behavior, "App moved to foreground.");
  if (const auto target = delegate())
    target->deliver(std::make_shared<const AppForegrounded>());
}

void BehaviorWatcher::didEnterBackground() {
  VORN_LOG_DEBUG(LoggerCategory::behavior, "App moved to background.");
  if (const auto target = delegate())
    target->deliver(std::make_shared<const AppBackgrounded>());
}

void BehaviorWatcher::screenChanged(const Notification& notification) {
  if (!notification.userInfo)
    return;
  const auto found = notification.userInfo->find(std::string(kScreenDidAppearNameKey));
  if (found == notification.userInfo->end())
    return;
  const auto* name = found->second.get<std::string>();
  if (name == nullptr)
    return;
  VORN_LOG_DEBUG(LoggerCategory::behavior, "App screen changed. Screen entry: " + *name + ".");
  if (const auto target = delegate())
    target->deliver(std::make_shared<const ScreenEntry>(*name));
}

}  // namespace vorn

// Observers that record what they receive, and launches of the behaviour manager on one
// installation's key store, for the behaviour tests.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "vorn/behavior/ApplicationNotifications.hpp"
#include "vorn/behavior/BehaviorManager.hpp"
#include "vorn/platform/KeychainStore.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/PlatformInstall.hpp"

namespace vorn::test {

class RecordingObserver : public BehaviorObserver {
 public:
  explicit RecordingObserver(std::set<int> types) : types_(std::move(types)) {}

  std::set<int> behaviorTypesToObserve() const override { return types_; }

  void onBehavior(const std::shared_ptr<const Behavior>& behavior) override {
    std::function<void(const Behavior&)> hook;
    {
      std::lock_guard lock(mutex_);
      received_.push_back(behavior);
      hook = hook_;
    }
    if (hook)
      hook(*behavior);
  }

  std::vector<std::shared_ptr<const Behavior>> received() const {
    std::lock_guard lock(mutex_);
    return received_;
  }

  std::size_t countOf(BehaviorType type) const {
    std::lock_guard lock(mutex_);
    std::size_t count = 0;
    for (const auto& behavior : received_)
      count += behavior->type() == type ? 1 : 0;
    return count;
  }

  /// Runs on every behaviour received, after it is recorded.
  void onEach(std::function<void(const Behavior&)> hook) {
    std::lock_guard lock(mutex_);
    hook_ = std::move(hook);
  }

 private:
  const std::set<int> types_;
  mutable std::mutex mutex_;
  std::vector<std::shared_ptr<const Behavior>> received_;  // guarded by mutex_
  std::function<void(const Behavior&)> hook_;              // guarded by mutex_
};

inline std::shared_ptr<RecordingObserver> observerOf(std::set<int> types) {
  return std::make_shared<RecordingObserver>(std::move(types));
}

/// One installation: its key store survives from one launch to the next.
class Installation {
 public:
  /// A new process of the app at `appVersion`: a Platform on this installation's key store,
  /// a fresh centre and a manager on both, kept until the next launch.
  std::shared_ptr<BehaviorManager> launch(std::optional<std::string> appVersion,
                                          BehaviorManagerConfig config = {}) {
    Platform platform = testing::installEphemeralPlatform(keychain);
    platform.app.appVersion = std::move(appVersion);
    platform.app.appName = "Tessarine";
    Platform::install(platform);
    center = std::make_shared<NotificationCenter>();
    manager = BehaviorManager::create(config, center, nullptr);
    return manager;
  }

  void activate() const { center->post(kApplicationDidBecomeActiveNotification); }
  void foreground() const { center->post(kApplicationWillEnterForegroundNotification); }
  void background() const { center->post(kApplicationDidEnterBackgroundNotification); }

  std::shared_ptr<KeychainStore> keychain = KeychainStore::inMemory();
  std::shared_ptr<NotificationCenter> center;
  std::shared_ptr<BehaviorManager> manager;
};

/// The messages of the behaviour category, in order.
inline std::vector<std::string> behaviorLines(const testing::CaptureLogSink& sink) {
  std::vector<std::string> lines;
  for (const auto& line : sink.lines()) {
    if (line.category == LoggerCategory::behavior)
      lines.push_back(line.message);
  }
  return lines;
}

}  // namespace vorn::test

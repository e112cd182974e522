// BehaviorWatcher: turns the host's lifecycle and screen notifications into behaviours and
// hands them to its delegate (the BehaviorManager), and checks the app's version on every
// activation against the one kept in the key store.
//
// start() writes "Behavior listening started.", installs the screen hook when screen
// tracking is on ("ScreenEntry tracking enabled"), and registers on its NotificationCenter:
// will-enter-foreground → didEnterForeground(), did-enter-background → didEnterBackground(),
// did-become-active → onUpgrade(), the screen notification → screenChanged(). The screen
// observer is registered whether or not screen tracking is on: a host that posts the screen
// notification itself is still heard.
//
// Screen hook. There is no method replacement in C++, so the host's UI layer makes one call
// when a screen appears, viewDidAppear(screenName). It does nothing until
// swizzleViewDidAppearForScreenTracking() has installed the hook (at most once per process);
// from then on it posts kScreenDidAppearNotification with {"name": screenName} on the default
// centre and returns, and the host's own appearance work continues after it. Wiring it:
// - iOS: swizzle (or override in a base class) -[UIViewController viewDidAppear:] and, first
//   thing, call viewDidAppear(NSStringFromClass([self class])), then the original.
// - Android: Application.registerActivityLifecycleCallbacks, onActivityResumed →
//   viewDidAppear(activity.getClass().getName()); Fragment screens from FragmentManager's
//   onFragmentResumed the same way.
// - Desktop: wherever the window shows a new page or view, with that view's name.
//
// The version check reads Platform::current()->app.appVersion and the version stored under
// the key "appVersion" of the key store item "com.quorvantis.tessarine.VORNSdk_appVersion".
//
// Ownership: held by std::shared_ptr, owned by its manager; the delegate is held weakly, and
// behaviours made while there is none are dropped. The notification observers hold the
// watcher weakly and are removed when it is destroyed. Thread safety: every call may come
// from any thread; notifications are handled on the posting thread, and no lock of the
// watcher is held while the delegate runs. Two activations on two threads at once store the
// new version once and report one AppVersionChanged.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/behavior/BehaviorDelegate.hpp"
#include "vorn/behavior/NotificationCenter.hpp"
#include "vorn/storage/keystore/VORNKeyStoreManager.hpp"

namespace vorn {

class VORN_API BehaviorWatcher : public std::enable_shared_from_this<BehaviorWatcher> {
 public:
  /// A null `keyStore` means VORNKeyStoreManager::shared(), looked up at each version check
  /// (so it follows the installed Platform).
  BehaviorWatcher(bool enableScreenTracking, std::shared_ptr<NotificationCenter> center,
                  std::shared_ptr<VORNKeyStoreManager> keyStore);
  ~BehaviorWatcher();
  BehaviorWatcher(const BehaviorWatcher&) = delete;
  BehaviorWatcher& operator=(const BehaviorWatcher&) = delete;

  /// Logs, installs the hook and registers the four observers; later calls do nothing.
  void start();
  void setDelegate(const std::shared_ptr<BehaviorDelegate>& delegate);
  bool enableScreenTracking() const noexcept { return enableScreenTracking_; }

  void didEnterForeground();
  void didEnterBackground();
  /// The version check.
  void onUpgrade();
  /// Makes a ScreenEntry from the user info's "name" when it is a string; otherwise nothing,
  /// silently.
  void screenChanged(const Notification& notification);

  /// Installs the screen hook; only the first call in the process does anything.
  static void swizzleViewDidAppearForScreenTracking();
  static bool screenTrackingHookInstalled() noexcept;
  /// The host UI layer's call when a screen appears (see above).
  static void viewDidAppear(std::string_view screenName);

 private:
  std::shared_ptr<BehaviorDelegate> delegate() const;
  template <class Handler>
  void listen(std::string_view name, Handler handler);
  std::shared_ptr<VORNKeyStoreManager> keyStore() const;
  // The version stored before this check (none on first use); `current` is stored in its
  // place when it differs.
  std::optional<std::string> exchangeStoredVersion(const std::string& current);

  const bool enableScreenTracking_;
  const std::shared_ptr<NotificationCenter> center_;
  const std::shared_ptr<VORNKeyStoreManager> keyStore_;

  mutable std::mutex mutex_;
  std::weak_ptr<BehaviorDelegate> delegate_;  // guarded by mutex_
  bool started_ = false;                      // guarded by mutex_
  std::vector<ObserverToken> tokens_;         // guarded by mutex_
  std::mutex versionMutex_;                   // makes read-compare-store of the version one step
};

}  // namespace vorn

// The screen-appearance hook: the host's UI layer reports each screen through viewDidAppear(),
// which posts the screen notification once the hook is installed.
#include <atomic>

#include "vorn/behavior/ApplicationNotifications.hpp"
#include "vorn/behavior/BehaviorWatcher.hpp"

namespace vorn {
namespace {

std::atomic<bool> hookInstalled{false};

}  // namespace

void BehaviorWatcher::swizzleViewDidAppearForScreenTracking() {
  // Installing twice must not report every screen twice; the flag makes later calls no-ops.
  hookInstalled.store(true, std::memory_order_release);
}

bool BehaviorWatcher::screenTrackingHookInstalled() noexcept {
  return hookInstalled.load(std::memory_order_acquire);
}

void BehaviorWatcher::viewDidAppear(std::string_view screenName) {
  if (!screenTrackingHookInstalled())
    return;
  NotificationCenter::defaultCenter()->post(
      kScreenDidAppearNotification,
      Dictionary{{std::string(kScreenDidAppearNameKey), Value(screenName)}});
}

}  // namespace vorn

// The shared instance of a keychain-layer service on the current Platform: made from that
// Platform on first use, and made again from the new one after another Platform is installed.
//
// Shared instances are never destroyed, so a reference handed out stays valid for the life of
// the process, as a singleton's would; one retired by a new Platform keeps its old stores.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "vorn/platform/Platform.hpp"

namespace vorn::detail {

template <class T>
struct PlatformSharedSlot {
  std::mutex mutex;
  std::shared_ptr<const Platform> platform;  // guarded by mutex
  std::shared_ptr<T> instance;               // guarded by mutex
  std::vector<std::shared_ptr<T>> retired;   // guarded by mutex
};

/// The instance for the current Platform, `make(platform)` when there is none yet. `make`
/// runs under the slot's lock and must not ask for this same instance.
template <class T, class Make>
std::shared_ptr<T> sharedOnCurrentPlatform(Make make) {
  static auto* const slot = new PlatformSharedSlot<T>();
  std::shared_ptr<const Platform> current = Platform::current();
  std::lock_guard lock(slot->mutex);
  if (slot->platform != current) {
    if (slot->instance)
      slot->retired.push_back(std::move(slot->instance));
    slot->instance = make(*current);
    slot->platform = std::move(current);
  }
  return slot->instance;
}

}  // namespace vorn::detail

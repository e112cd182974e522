#include "vorn/behavior/Behavior.hpp"

#include <chrono>

#include "vorn/platform/Platform.hpp"

namespace vorn {
namespace {

Date now(const Platform& platform) {
  if (!platform.clock)
    return std::chrono::system_clock::now();
  return Date(std::chrono::milliseconds(platform.clock->nowMillis()));
}

}  // namespace

Behavior::Behavior(BehaviorType type) : Behavior(type, *Platform::current()) {}

Behavior::Behavior(BehaviorType type, const Platform& platform)
    : type_(type),
      timestamp_(now(platform)),
      appVersion_(platform.app.appVersion),
      appName_(platform.app.appName) {}

Behavior::~Behavior() = default;

}  // namespace vorn

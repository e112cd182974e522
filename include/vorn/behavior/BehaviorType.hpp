// The kinds of behaviour the SDK tracks in the host app's life.
//
// Each kind has an integer raw value (`appForegrounded` 0 ... `screenEntry` 3), which is what
// observers name in their behaviorTypesToObserve. All functions here are pure and thread-safe.
#pragma once

#include <array>
#include <optional>

namespace vorn {

enum class BehaviorType : int {
  appForegrounded = 0,
  appBackgrounded = 1,
  appVersionChanged = 2,
  screenEntry = 3,
};

/// Every kind in raw-value order (allCases).
inline constexpr std::array<BehaviorType, 4> kAllBehaviorTypes{
    BehaviorType::appForegrounded, BehaviorType::appBackgrounded, BehaviorType::appVersionChanged,
    BehaviorType::screenEntry};

constexpr int rawValue(BehaviorType type) noexcept {
  return static_cast<int>(type);
}

/// 0...3; any other integer gives no value.
constexpr std::optional<BehaviorType> behaviorTypeFromInt(int raw) noexcept {
  if (raw >= 0 && raw <= 3)
    return static_cast<BehaviorType>(raw);
  return std::nullopt;
}

}  // namespace vorn

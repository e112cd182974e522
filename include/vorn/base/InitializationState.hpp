// InitializationState: how far the SDK's own start-up got.
//
// A byte-sized enumeration whose raw value is its integer: NONE (0) before any start-up or
// after a teardown, INITIALIZING (1) while modules are being started, READY (2) once every
// module reported in time. The ordering of the raw values is meaningful: "above
// INITIALIZING" is how start-up tests for READY. Pure values; thread-safe.
#pragma once

#include <cstdint>
#include <optional>

namespace vorn {

enum class InitializationState : std::uint8_t { NONE = 0, INITIALIZING = 1, READY = 2 };

/// The state's byte: 0, 1 or 2.
constexpr std::uint8_t rawValue(InitializationState state) noexcept {
  return static_cast<std::uint8_t>(state);
}

/// 0, 1 or 2; any other integer gives no value.
constexpr std::optional<InitializationState> initializationStateFromInt(int raw) noexcept {
  if (raw >= 0 && raw <= 2)
    return static_cast<InitializationState>(raw);
  return std::nullopt;
}

}  // namespace vorn

// The severity of a log line, and the threshold the logger compares it with.
//
// Levels are ordered by raw value (`debug` 0 ... `none` 4); the built-in relational
// operators of the enumeration compare exactly that. `none` as a threshold silences
// everything, as a line level it is never written by the default sink.
#pragma once

#include <optional>
#include <string_view>

#include "vorn/base/Export.hpp"

namespace vorn {

enum class LogLevel : int { debug = 0, warning = 1, error = 2, fault = 3, none = 4 };

/// The types of the platform log a line is written with.
enum class OSLogType : int { debug, defaultType, error, fault };

constexpr int rawValue(LogLevel level) noexcept {
  return static_cast<int>(level);
}

/// 0...4; anything else gives no level.
VORN_API std::optional<LogLevel> logLevelFrom(int raw) noexcept;

/// True when a line of level `message` passes a logger configured at `configured`.
constexpr bool canLog(LogLevel configured, LogLevel message) noexcept {
  return message >= configured;
}

/// debug → debug, warning → default, error → error, fault → fault, none → no type.
VORN_API std::optional<OSLogType> getOSLogType(LogLevel level) noexcept;

/// "debug", "default", "error" or "fault": how the default sink names the type.
VORN_API std::string_view rawValue(OSLogType type) noexcept;

}  // namespace vorn

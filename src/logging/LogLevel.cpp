#include "vorn/logging/LogLevel.hpp"

namespace vorn {

std::optional<LogLevel> logLevelFrom(int raw) noexcept {
  if (raw < rawValue(LogLevel::debug) || raw > rawValue(LogLevel::none))
    return std::nullopt;
  return static_cast<LogLevel>(raw);
}

std::optional<OSLogType> getOSLogType(LogLevel level) noexcept {
  switch (level) {
    case LogLevel::debug:
      return OSLogType::debug;
    case LogLevel::warning:
      return OSLogType::defaultType;
    case LogLevel::error:
      return OSLogType::error;
    case LogLevel::fault:
      return OSLogType::fault;
    case LogLevel::none:
      break;
  }
  return std::nullopt;
}

std::string_view rawValue(OSLogType type) noexcept {
  switch (type) {
    case OSLogType::debug:
      return "debug";
    case OSLogType::defaultType:
      return "default";
    case OSLogType::error:
      return "error";
    case OSLogType::fault:
      return "fault";
  }
  return "default";
}

}  // namespace vorn

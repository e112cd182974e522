#include "vorn/logging/LoggerSubsystem.hpp"

namespace vorn {

std::string_view rawValue(LoggerSubsystem subsystem) noexcept {
  if (const auto module = subsystem.moduleName())
    return rawValue(*module);
  return "VORNSdk";
}

std::optional<LoggerSubsystem> loggerSubsystemFrom(std::string_view text) noexcept {
  if (text == "sdk")
    return LoggerSubsystem::sdk();
  if (const auto module = moduleNameFrom(text))
    return LoggerSubsystem::module(*module);
  return std::nullopt;
}

}  // namespace vorn

// Which part of the system a log line comes from: the core itself or one feature module.
//
// The core prints as "VORNSdk" but is parsed only from "sdk"; "VORNSdk" does not parse back.
#pragma once

#include <optional>
#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"

namespace vorn {

class LoggerSubsystem {
 public:
  /// The core.
  static constexpr LoggerSubsystem sdk() noexcept { return LoggerSubsystem(std::nullopt); }
  /// A feature module.
  static constexpr LoggerSubsystem module(ModuleName name) noexcept {
    return LoggerSubsystem(name);
  }

  constexpr bool isSdk() const noexcept { return !module_.has_value(); }
  /// The module this subsystem carries; no value for the core.
  constexpr std::optional<ModuleName> moduleName() const noexcept { return module_; }

  friend constexpr bool operator==(LoggerSubsystem, LoggerSubsystem) noexcept = default;

 private:
  constexpr explicit LoggerSubsystem(std::optional<ModuleName> module) noexcept : module_(module) {}
  std::optional<ModuleName> module_;
};

/// "VORNSdk" for the core, else the module's raw value ("cdp", "push").
VORN_API std::string_view rawValue(LoggerSubsystem subsystem) noexcept;

/// Exactly "sdk", "cdp" or "push"; anything else gives no value.
VORN_API std::optional<LoggerSubsystem> loggerSubsystemFrom(std::string_view text) noexcept;

}  // namespace vorn

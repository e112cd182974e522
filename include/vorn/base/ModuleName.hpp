// The feature modules the core can host.
//
// A module is named by a small integer (`cdp` = 0, `push` = 1) and by its raw text ("cdp",
// "push"). Its description is the name under which its implementation class is looked up.
// All functions here are pure and thread-safe. The integer construction that logs an
// invalid tag, moduleNameFromInt(), lives with its callers in vorn/identity/ModuleNameFromInt.hpp,
// since this layer sits below the logger.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"

namespace vorn {

enum class ModuleName : int { cdp = 0, push = 1 };

/// Every module, in declaration order: `cdp`, then `push`.
inline constexpr std::array<ModuleName, 2> kAllModuleNames{ModuleName::cdp, ModuleName::push};

/// "cdp" or "push".
VORN_API std::string_view rawValue(ModuleName name) noexcept;

/// The module's integer tag.
constexpr int rawIntValue(ModuleName name) noexcept {
  return static_cast<int>(name);
}

/// Exactly "cdp" or "push"; anything else (other case included) gives no value.
VORN_API std::optional<ModuleName> moduleNameFrom(std::string_view raw) noexcept;

/// 0 or 1; any other integer gives no value, silently.
constexpr std::optional<ModuleName> moduleNameFromRawInt(int raw) noexcept {
  if (raw == 0 || raw == 1)
    return static_cast<ModuleName>(raw);
  return std::nullopt;
}

/// The implementation class name: "Cdp.CdpModule" for `cdp`, "VORNSdkPushModule" for `push`.
VORN_API std::string description(ModuleName name);

}  // namespace vorn

#include "vorn/core/ModuleName.hpp"

#include "core/RawValues.hpp"
#include "core/Text.hpp"
#include "vorn/logging/Log.hpp"

namespace vorn {
namespace {
constexpr std::array<std::string_view, 2> kRawValues{"cdp", "push"};
}  // namespace

std::string_view rawValue(ModuleName name) noexcept {
  return detail::rawValueIn(kRawValues, name);
}

std::optional<ModuleName> moduleNameFrom(std::string_view raw) noexcept {
  return detail::fromRawValueIn<ModuleName>(kRawValues, raw);
}

std::optional<ModuleName> moduleNameFromInt(int raw) {
  if (raw == 0 || raw == 1)
    return static_cast<ModuleName>(raw);
  VORN_LOG(LogLevel::warning, LoggerCategory::identity,
           "Invalid module rawValue: `" + std::to_string(raw) + "`.");
  return std::nullopt;
}

std::string description(ModuleName name) {
  // The rule is written for any raw value, not just today's two, so that a third module's
  // class name follows without a new table entry.
  const std::string lower = detail::lowercased(rawValue(name));
  if (lower == "push")
    return "VORNSdkPushModule";
  const std::string capitalised =
      lower.empty() ? lower : detail::uppercased(lower.substr(0, 1)) + lower.substr(1);
  return capitalised + "." + capitalised + "Module";
}

}  // namespace vorn

#include "vorn/base/ModuleName.hpp"

#include "base/RawValues.hpp"
#include "base/Text.hpp"

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

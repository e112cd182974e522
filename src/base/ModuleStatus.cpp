#include "vorn/base/ModuleStatus.hpp"

#include "base/RawValues.hpp"

namespace vorn {
namespace {
constexpr std::array<std::string_view, 6> kRawValues{"cancelled", "disabled",     "failed",
                                                     "inactive",  "initializing", "operational"};
}

std::string_view rawValue(ModuleStatus status) noexcept {
  return detail::rawValueIn(kRawValues, status);
}

std::optional<ModuleStatus> moduleStatusFrom(std::string_view raw) noexcept {
  return detail::fromRawValueIn<ModuleStatus>(kRawValues, raw);
}

}  // namespace vorn

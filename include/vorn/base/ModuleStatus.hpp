// The lifecycle state of one module as its facade sees it.
#pragma once

#include <optional>
#include <string_view>

#include "vorn/base/Export.hpp"

namespace vorn {

enum class ModuleStatus : int {
  cancelled = 0,
  disabled = 1,
  failed = 2,
  inactive = 3,
  initializing = 4,
  operational = 5,
};

/// "cancelled", "disabled", "failed", "inactive", "initializing" or "operational".
VORN_API std::string_view rawValue(ModuleStatus status) noexcept;

/// The exact raw value; anything else gives no value.
VORN_API std::optional<ModuleStatus> moduleStatusFrom(std::string_view raw) noexcept;

}  // namespace vorn

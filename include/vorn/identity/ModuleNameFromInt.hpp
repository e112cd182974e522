// A module from its integer tag, as the identity calls that take raw integers read it.
// Thread-safe; may write one log line.
#pragma once

#include <optional>

#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"

namespace vorn {

/// 0 or 1. Any other integer gives no value and logs a warning
/// "Invalid module rawValue: `<n>`." in the `identity` category.
VORN_API std::optional<ModuleName> moduleNameFromInt(int raw);

}  // namespace vorn

// The category of an event: `engagement` (0), `identity` (1) or `system` (2). A message
// built from an event carries the category's raw value as text.
#pragma once

#include <string_view>

#include "vorn/base/Export.hpp"

namespace vorn {

enum class EventCategory : int { engagement = 0, identity = 1, system = 2 };

/// "engagement", "identity" or "system".
VORN_API std::string_view rawValue(EventCategory category) noexcept;

/// Never fails: the exact, case-sensitive raw value gives its category; anything else
/// ("", "Engagement", "SYSTEM") gives `engagement` and writes the debug line
/// "Invalid event category parameter. Defaulting to engagement." in the `event` category.
VORN_API EventCategory eventCategoryFrom(std::string_view raw);

}  // namespace vorn

#include "vorn/events/EventCategory.hpp"

#include <array>

#include "base/RawValues.hpp"
#include "vorn/logging/Log.hpp"

namespace vorn {
namespace {
constexpr std::array<std::string_view, 3> kRawValues{"engagement", "identity", "system"};
}  // namespace

std::string_view rawValue(EventCategory category) noexcept {
  return detail::rawValueIn(kRawValues, category);
}

EventCategory eventCategoryFrom(std::string_view raw) {
  if (const auto category = detail::fromRawValueIn<EventCategory>(kRawValues, raw))
    return *category;
  VORN_LOG_DEBUG(LoggerCategory::event,
                 "Invalid event category parameter. Defaulting to engagement.");
  return EventCategory::engagement;
}

}  // namespace vorn

#include "vorn/events/SystemEvent.hpp"

#include "base/Text.hpp"

namespace vorn {

SystemEvent::SystemEvent(std::string_view name, std::optional<Dictionary> attributes)
    : Event(detail::trimmed(name), EventCategory::system, std::move(attributes)) {}

}  // namespace vorn

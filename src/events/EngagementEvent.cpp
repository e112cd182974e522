#include "vorn/events/EngagementEvent.hpp"

namespace vorn {

EngagementEvent::EngagementEvent(std::string name, std::optional<Dictionary> attributes)
    : Event(std::move(name), EventCategory::engagement, std::move(attributes)) {}

}  // namespace vorn

#include "vorn/events/Event.hpp"

#include "vorn/base/Uuid.hpp"

namespace vorn {

Event::Event(std::string name, EventCategory category, std::optional<Dictionary> attributes)
    : id_(makeUuidString()),
      name_(std::move(name)),
      category_(category),
      attributes_(std::move(attributes)) {}

Event::~Event() = default;

}  // namespace vorn

#include "vorn/events/FakeEvent.hpp"

namespace vorn {

std::shared_ptr<FakeEvent> FakeEvent::create(std::string name) {
  return std::shared_ptr<FakeEvent>(new FakeEvent(std::move(name)));
}

FakeEvent::FakeEvent(std::string name)
    : Event(std::move(name), EventCategory::engagement, Dictionary{}) {}

}  // namespace vorn

#include "vorn/messaging/Publisher.hpp"

#include "vorn/messaging/EventBus.hpp"

namespace vorn {

Publisher::~Publisher() = default;

void Publisher::send(std::shared_ptr<const Event> event) {
  // Module tags and producer tags agree for every module, so this always has a value.
  if (const auto producer = messageProducerFromInt(rawIntValue(name())))
    EventBus::publish(*producer, std::move(event));
}

}  // namespace vorn

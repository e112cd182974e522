#include "vorn/messaging/Message.hpp"

#include "vorn/base/Timestamp.hpp"

namespace vorn {
namespace {

std::string categoryText(EventCategory category) {
  switch (category) {
    case EventCategory::engagement:
    case EventCategory::identity:
    case EventCategory::system:
      return std::string(rawValue(category));
  }
  return "undefined";
}

std::string categoryText(ApplicationCategory category) {
  switch (category) {
    case ApplicationCategory::application:
      return "application";
    case ApplicationCategory::system:
      return "system";
  }
  return "undefined";
}

std::shared_ptr<const std::optional<Dictionary>> sharedParameters(
    std::optional<Dictionary> parameters) {
  return std::make_shared<const std::optional<Dictionary>>(std::move(parameters));
}

}  // namespace

Message::Message(std::string id, std::string name, EventCategory category, MessageProducer producer,
                 std::optional<Dictionary> parameters, std::shared_ptr<const Event> fromEvent,
                 bool priority)
    : Message(std::move(id), std::move(name), categoryText(category), producer,
              sharedParameters(std::move(parameters)), std::move(fromEvent), priority) {}

Message::Message(std::string id, std::string name, ApplicationCategory category,
                 MessageProducer producer, std::optional<Dictionary> parameters,
                 std::shared_ptr<const Event> fromEvent, bool priority)
    : Message(std::move(id), std::move(name), categoryText(category), producer,
              sharedParameters(std::move(parameters)), std::move(fromEvent), priority) {}

Message::Message(std::string id, std::string name, std::string category, MessageProducer producer,
                 std::shared_ptr<const std::optional<Dictionary>> parameters,
                 std::shared_ptr<const Event> fromEvent, bool priority)
    : id_(std::move(id)),
      name_(std::move(name)),
      category_(std::move(category)),
      producer_(rawValue(producer)),
      timestamp_(currentTimestamp()),
      parameters_(std::move(parameters)),
      fromEvent_(std::move(fromEvent)),
      priority_(priority) {}

std::shared_ptr<const Message> Message::makeFrom(MessageProducer producer,
                                                 std::shared_ptr<const Event> event) {
  // The event is immutable and kept alive by the message, so its attributes can be shared.
  std::shared_ptr<const std::optional<Dictionary>> parameters(event, &event->attributes());
  return std::shared_ptr<const Message>(new Message(event->id(), event->name(),
                                                    categoryText(event->category()), producer,
                                                    std::move(parameters), event, false));
}

}  // namespace vorn

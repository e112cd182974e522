// Message: what the event bus delivers to a subscribed module - the text fields of one
// event, who produced it, when, and the event itself.
//
// The category is text: the raw value of an EventCategory, or, for the application-level
// kind, "application" or "system"; a tag outside the enumeration is stored as "undefined".
// The time stamp is the creation time in UTC ("2026-11-23T00:44:14Z").
//
// Messages are immutable and shared as std::shared_ptr<const Message>; any thread may read
// them. A message built from an event shares the event's attributes instead of copying them.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "vorn/base/Export.hpp"
#include "vorn/base/Value.hpp"
#include "vorn/events/Event.hpp"
#include "vorn/events/EventCategory.hpp"
#include "vorn/messaging/MessageProducer.hpp"

namespace vorn {

/// The application-level category kind: `application` (0) or `system` (1).
enum class ApplicationCategory : int { application = 0, system = 1 };

class VORN_API Message {
 public:
  Message(std::string id, std::string name, EventCategory category, MessageProducer producer,
          std::optional<Dictionary> parameters, std::shared_ptr<const Event> fromEvent,
          bool priority);
  Message(std::string id, std::string name, ApplicationCategory category, MessageProducer producer,
          std::optional<Dictionary> parameters, std::shared_ptr<const Event> fromEvent,
          bool priority);

  /// The bus's message for `event`: its id, name, category and attributes, the time stamp
  /// of now, the event itself and priority false. `event` must not be null.
  static std::shared_ptr<const Message> makeFrom(MessageProducer producer,
                                                 std::shared_ptr<const Event> event);

  Message(const Message&) = delete;
  Message& operator=(const Message&) = delete;

  const std::string& id() const noexcept { return id_; }
  const std::string& name() const noexcept { return name_; }
  const std::string& category() const noexcept { return category_; }
  const std::string& producer() const noexcept { return producer_; }
  const std::string& timestamp() const noexcept { return timestamp_; }
  const std::optional<Dictionary>& parameters() const noexcept { return *parameters_; }
  const std::shared_ptr<const Event>& fromEvent() const noexcept { return fromEvent_; }
  bool priority() const noexcept { return priority_; }

 private:
  Message(std::string id, std::string name, std::string category, MessageProducer producer,
          std::shared_ptr<const std::optional<Dictionary>> parameters,
          std::shared_ptr<const Event> fromEvent, bool priority);

  const std::string id_;
  const std::string name_;
  const std::string category_;
  const std::string producer_;
  const std::string timestamp_;
  // Never null; points into fromEvent_ when the message was made from it.
  const std::shared_ptr<const std::optional<Dictionary>> parameters_;
  const std::shared_ptr<const Event> fromEvent_;
  const bool priority_;
};

}  // namespace vorn

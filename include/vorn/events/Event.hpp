// Event: the unit of information put on the event bus - an id, a name, a category and
// optional attributes (absent and empty are different).
//
// Every concrete event gets a fresh random UUID (upper-case text) as its id when it is built.
// Events are immutable once built and are shared as std::shared_ptr<const Event> between the
// app, the bus and the modules; any thread may read them at any time.
//
// Feature modules and apps may derive their own events; the protected constructor assigns
// the id.
#pragma once

#include <optional>
#include <string>

#include "vorn/base/Export.hpp"
#include "vorn/base/Value.hpp"
#include "vorn/events/EventCategory.hpp"

namespace vorn {

class VORN_API Event {
 public:
  virtual ~Event();

  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  const std::string& id() const noexcept { return id_; }
  const std::string& name() const noexcept { return name_; }
  EventCategory category() const noexcept { return category_; }
  const std::optional<Dictionary>& attributes() const noexcept { return attributes_; }

 protected:
  /// Stores the fields as given and assigns a new UUID string as the id.
  Event(std::string name, EventCategory category, std::optional<Dictionary> attributes);

 private:
  const std::string id_;
  const std::string name_;
  const EventCategory category_;
  const std::optional<Dictionary> attributes_;
};

}  // namespace vorn

// CustomEvent: an event named by the app (category `engagement`), the one event whose input
// is validated.
//
// The name is trimmed of white space and line breaks and refused when the result is empty or
// starts with "$". Attribute keys are trimmed the same way; a key that is then empty, starts
// with "$" or contains a "." anywhere is dropped with a debug line, and the event keeps the
// rest. Values are never inspected. Keys that trim to the same text keep the value of the
// one visited last (the dictionary's order). Absent attributes stay absent; an empty or
// fully dropped dictionary stays present and empty.
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/events/Event.hpp"

namespace vorn {

class VORN_API CustomEvent final : public Event {
 public:
  /// Null when the name is refused, after the debug line (category `event`)
  /// "The event name must not be empty, contain only whitespace characters or leading $.
  /// The `<trimmed name>` event was not created."
  static std::shared_ptr<CustomEvent> create(std::string_view name,
                                             std::optional<Dictionary> attributes = std::nullopt);

 private:
  CustomEvent(std::string name, std::optional<Dictionary> attributes);
};

}  // namespace vorn

// SystemEvent: an event the SDK itself emits (category `system`).
//
// The name loses its leading and trailing white space and line breaks; an empty result is
// accepted. Attributes are kept exactly as passed: no key is checked or dropped.
#pragma once

#include <optional>
#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/events/Event.hpp"

namespace vorn {

class VORN_API SystemEvent final : public Event {
 public:
  explicit SystemEvent(std::string_view name, std::optional<Dictionary> attributes = std::nullopt);
};

}  // namespace vorn

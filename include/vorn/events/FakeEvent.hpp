// FakeEvent: a placeholder event (category `engagement`) whose name is kept exactly as
// given and whose attributes are present and empty.
#pragma once

#include <memory>
#include <string>

#include "vorn/base/Export.hpp"
#include "vorn/events/Event.hpp"

namespace vorn {

class VORN_API FakeEvent final : public Event {
 public:
  /// Declared failable like CustomEvent::create() for symmetry, but never returns null.
  static std::shared_ptr<FakeEvent> create(std::string name);

 private:
  explicit FakeEvent(std::string name);
};

}  // namespace vorn

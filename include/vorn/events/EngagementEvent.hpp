// EngagementEvent: the base of the commerce event families (category `engagement`). Name
// and attributes are kept exactly as given: no trimming, no key cleaning. Only derived
// classes build one.
#pragma once

#include <optional>
#include <string>

#include "vorn/base/Export.hpp"
#include "vorn/events/Event.hpp"

namespace vorn {

class VORN_API EngagementEvent : public Event {
 protected:
  EngagementEvent(std::string name, std::optional<Dictionary> attributes);
};

}  // namespace vorn

// LocationDelegate: how the host hears of the push module's location events and decides
// whether a location message is shown.
//
// Ownership: the host creates it; the module keeps it through std::shared_ptr until it is
// replaced. Thread safety: called by the module from any thread.
#pragma once

#include "vorn/base/Export.hpp"
#include "vorn/base/Value.hpp"
#include "vorn/facades/Region.hpp"

namespace vorn {

class VORN_API LocationDelegate {
 public:
  virtual ~LocationDelegate();

  /// The device entered `region`, which carries `message`; false keeps the message hidden.
  virtual bool shouldShowLocationMessage(const Dictionary& message, const Region& region) = 0;
};

}  // namespace vorn

// InAppMessageEventDelegate: how the host takes part in showing in-app messages: it may hold
// one back, and hears when one was shown and closed. Messages are the module's dictionaries.
//
// Ownership: the host creates it; the module keeps it through std::shared_ptr until it is
// replaced. Thread safety: called by the module from any thread.
#pragma once

#include "vorn/base/Export.hpp"
#include "vorn/base/Value.hpp"

namespace vorn {

class VORN_API InAppMessageEventDelegate {
 public:
  virtual ~InAppMessageEventDelegate();

  /// False keeps `message` from being shown now.
  virtual bool shouldShowInAppMessage(const Dictionary& message) = 0;
  virtual void didShowInAppMessage(const Dictionary& message) = 0;
  virtual void didCloseInAppMessage(const Dictionary& message) = 0;
};

}  // namespace vorn

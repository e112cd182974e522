// URLHandlingDelegate: how the host opens the links carried by push, in-app and inbox
// messages. Without one the module does not open links itself.
//
// Ownership: the host creates it; the module keeps it through std::shared_ptr until it is
// replaced. Thread safety: called by the module from any thread.
#pragma once

#include <string>

#include "vorn/base/Export.hpp"

namespace vorn {

class VORN_API URLHandlingDelegate {
 public:
  virtual ~URLHandlingDelegate();

  /// Opens `url`; `type` is the kind of link as the module names it.
  virtual void handleURL(const std::string& url, const std::string& type) = 0;
};

}  // namespace vorn

// Subscriber: what a feature module implements to receive the bus's messages.
//
// receive() is called on a thread of the module's delivery queue, never on the publisher's
// thread, and calls may overlap: an implementation must be thread-safe. The bus holds a
// subscriber weakly; the module keeps it alive.
#pragma once

#include <memory>

#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/messaging/Message.hpp"

namespace vorn {

class VORN_API Subscriber {
 public:
  virtual ~Subscriber();

  virtual ModuleName name() const = 0;
  virtual void receive(std::shared_ptr<const Message> message) = 0;
};

}  // namespace vorn

// Publisher: a component that puts events on the bus under its module's name.
//
// The default send() publishes the event to every subscribed module with the producer whose
// tag equals the module's (`cdp` or `push`). Thread-safe as EventBus::publish().
#pragma once

#include <memory>

#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/events/Event.hpp"

namespace vorn {

class VORN_API Publisher {
 public:
  virtual ~Publisher();

  virtual ModuleName name() const = 0;
  virtual void send(std::shared_ptr<const Event> event);
};

}  // namespace vorn

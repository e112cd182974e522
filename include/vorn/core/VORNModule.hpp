// VORNModule: a running feature module, as the core sees it.
//
// A module is created by its registered class's factory (ModuleClass) and lives until the
// core tears it down. It contributes a dictionary to the SDK state snapshot and may receive
// the event bus's messages: a module that does answers asSubscriber() with its Subscriber,
// and the core subscribes it once it is operational.
//
// Ownership: held by std::shared_ptr, by the facade of its module. Thread safety:
// implementations must accept calls from any thread; tearDown() is called once, from the
// SDK's start-up queue or the caller of a teardown.
#pragma once

#include <memory>

#include "vorn/base/Export.hpp"
#include "vorn/base/Value.hpp"
#include "vorn/messaging/Subscriber.hpp"

namespace vorn {

class VORN_API VORNModule {
 public:
  virtual ~VORNModule();

  /// Stops the module: its work, its timers, its subscriptions.
  virtual void tearDown() = 0;
  /// What the module adds to the SDK state snapshot.
  virtual Dictionary stateProperties() const = 0;
  /// The module as a bus subscriber; null (the default) for a module that does not listen.
  virtual std::shared_ptr<Subscriber> asSubscriber();
};

}  // namespace vorn

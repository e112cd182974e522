// BehaviorObserver: what a feature module implements to learn about the app's life, and
// Observation, the manager's weak record of one registered observer.
//
// An observer names the kinds it wants as raw BehaviorType values; kinds it does not name
// are not delivered to it (a sticky one replayed at registration is logged as not taken).
//
// Ownership: the module owns its observer through std::shared_ptr; the manager only keeps a
// weak reference, so an observer that is released simply stops receiving and is dropped at
// the next delivery. Thread safety: onBehavior() and behaviorTypesToObserve() may be called
// on any thread that posts a notification or registers an observer, possibly on two threads
// at once, and never under a lock of the manager: an observer may call addObserver() or
// removeObserver() from onBehavior().
#pragma once

#include <memory>
#include <set>

#include "vorn/base/Export.hpp"
#include "vorn/behavior/Behavior.hpp"

namespace vorn {

class VORN_API BehaviorObserver {
 public:
  virtual ~BehaviorObserver();

  /// Raw BehaviorType values this observer wants.
  virtual std::set<int> behaviorTypesToObserve() const = 0;
  virtual void onBehavior(const std::shared_ptr<const Behavior>& behavior) = 0;
};

struct Observation {
  std::weak_ptr<BehaviorObserver> observer;
};

}  // namespace vorn

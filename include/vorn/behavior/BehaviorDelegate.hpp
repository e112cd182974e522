// BehaviorDelegate: how the watcher hands a behaviour it made to the manager. The manager is
// the only implementation; the watcher holds it weakly, so a behaviour made after the
// manager is gone is dropped silently.
//
// Thread safety: deliver() is called on the thread that posted the notification.
#pragma once

#include <memory>

#include "vorn/base/Export.hpp"
#include "vorn/behavior/Behavior.hpp"

namespace vorn {

class VORN_API BehaviorDelegate {
 public:
  virtual ~BehaviorDelegate();

  virtual void deliver(const std::shared_ptr<const Behavior>& behavior) = 0;
};

}  // namespace vorn

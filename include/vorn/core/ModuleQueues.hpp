// ModuleQueues: the process-wide registry of module queues, one per module at most.
//
// The registry's map is read as a snapshot under one lock and replaced whole under the same
// lock; the lock is never held while an operation is added or cancelled, so a slow queue
// cannot stall another module.
//
// Thread safety: every function may be called from any thread.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/core/ModuleQueue.hpp"

namespace vorn {

class VORN_API ModuleQueues {
 public:
  ModuleQueues() = delete;

  /// "vornsdk.module." + the module's raw value + ".tasks".
  static std::string queueName(ModuleName module);

  /// Hands the operation to the module's queue, creating and registering it when absent.
  static void addOperation(std::shared_ptr<Operation> operation, ModuleName module);

  /// The operation count of the module's queue; no value (not zero) when it has none.
  static std::optional<std::size_t> pendingOperationCount(ModuleName module);

  /// Cancels everything in the module's queue and forgets the queue; nothing when absent.
  static void removeQueue(ModuleName module);

  /// The module's registered queue, or null.
  static std::shared_ptr<ModuleQueue> queue(ModuleName module);

  /// Registers `queue` under its name, replacing (without cancelling) any queue there; lets
  /// tests put a recording queue in place.
  static void install(std::shared_ptr<ModuleQueue> queue);
};

}  // namespace vorn

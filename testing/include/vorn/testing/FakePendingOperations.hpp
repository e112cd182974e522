// Test doubles for module queues: a ModuleQueue that records every operation handed to it,
// and an operation that only waits.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "vorn/core/ModuleQueue.hpp"
#include "vorn/runtime/Operation.hpp"

namespace vorn::testing {

/// Records each operation in operations() before adding it as a ModuleQueue would.
class FakePendingOperations : public ModuleQueue {
 public:
  using ModuleQueue::ModuleQueue;

  void addOperation(std::shared_ptr<Operation> operation) override;
  std::vector<std::shared_ptr<Operation>> operations() const;

 private:
  mutable std::mutex mutex_;
  std::vector<std::shared_ptr<Operation>> operations_;  // guarded by mutex_
};

/// Its body sleeps for `delay` whole seconds (compressed by ScopedTimeScale).
class FakeDelayedOperation : public Operation {
 public:
  explicit FakeDelayedOperation(int seconds) : delay(seconds) {}
  void main() override;

  const int delay;
};

}  // namespace vorn::testing

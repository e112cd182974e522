#include "vorn/testing/FakePendingOperations.hpp"

#include <chrono>
#include <thread>

#include "vorn/runtime/Durations.hpp"

namespace vorn::testing {

void FakePendingOperations::addOperation(std::shared_ptr<Operation> operation) {
  {
    std::lock_guard guard(mutex_);
    operations_.push_back(operation);
  }
  ModuleQueue::addOperation(std::move(operation));
}

std::vector<std::shared_ptr<Operation>> FakePendingOperations::operations() const {
  std::lock_guard guard(mutex_);
  return operations_;
}

void FakeDelayedOperation::main() {
  std::this_thread::sleep_for(durations::scaled(std::chrono::seconds(delay)));
}

}  // namespace vorn::testing

#include "vorn/core/ModuleQueue.hpp"

#include "vorn/core/ModuleQueues.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/runtime/Durations.hpp"

namespace vorn {

ModuleQueue::ModuleQueue(ModuleName module)
    : module_(module),
      name_(ModuleQueues::queueName(module)),
      deadline_(std::chrono::system_clock::now() + durations::kModuleQueueDeadline) {}

ModuleQueue::~ModuleQueue() = default;

OperationQueue& ModuleQueue::queue() const {
  if (!queue_) {
    queue_ = std::make_unique<OperationQueue>();
    queue_->setName(name_);
    queue_->setMaxConcurrentOperationCount(1);
  }
  return *queue_;
}

void ModuleQueue::addOperation(std::shared_ptr<Operation> operation) {
  bool full = false;
  std::size_t countAfter = 0;
  {
    // Check and add under one hold, so that racing callers can never push the queue past
    // its limit.
    std::lock_guard guard(queueLock_);
    OperationQueue& operations = queue();
    if (operations.operationCount() >= kLimit) {
      operations.cancelAllOperations();
      full = true;
    } else {
      operations.addOperation(std::move(operation));
      countAfter = operations.operationCount();
    }
  }
  if (full) {
    VORN_LOG_DEBUG(LoggerCategory::sdk, "Failed adding operation to the `" + name_ +
                                            "` queue. Buffer is full. Cancelling all operations.");
    return;
  }
  VORN_LOG_DEBUG(LoggerCategory::sdk, "New operation (" + std::to_string(countAfter) +
                                          " of 100) added to the `" + name_ + "` queue.");
}

void ModuleQueue::cancelAll() {
  VORN_LOG_DEBUG(LoggerCategory::sdk, "Cancelling all operations in the " + name_ + " queue.");
  std::lock_guard guard(queueLock_);
  queue().cancelAllOperations();
}

std::size_t ModuleQueue::operationCount() const {
  std::lock_guard guard(queueLock_);
  return queue().operationCount();
}

}  // namespace vorn

#include "vorn/runtime/OperationQueue.hpp"

#include <mutex>
#include <utility>

#include "runtime/OperationQueueCore.hpp"
#include "vorn/runtime/BlockOperation.hpp"

namespace vorn {

OperationQueue::OperationQueue() : core_(std::make_shared<detail::OperationQueueCore>(this)) {}

OperationQueue::~OperationQueue() {
  core_->owner.store(nullptr, std::memory_order_release);
}

OperationQueue* OperationQueue::current() {
  return detail::OperationQueueCore::current();
}

void OperationQueue::setName(std::string name) {
  std::lock_guard lock(core_->mutex);
  core_->name = std::move(name);
}

std::string OperationQueue::name() const {
  std::lock_guard lock(core_->mutex);
  return core_->name;
}

void OperationQueue::setMaxConcurrentOperationCount(int count) {
  {
    std::lock_guard lock(core_->mutex);
    core_->maxConcurrent = count < 0 ? kDefaultMaxConcurrentOperationCount : count;
  }
  core_->pump();
}

int OperationQueue::maxConcurrentOperationCount() const {
  std::lock_guard lock(core_->mutex);
  return core_->maxConcurrent;
}

void OperationQueue::addOperation(std::shared_ptr<Operation> operation) {
  if (!operation || operation->enqueued_.exchange(true) || operation->isExecuting() ||
      operation->isFinished()) {
    return;
  }
  core_->add(std::move(operation));
}

void OperationQueue::addOperation(std::function<void()> block) {
  addOperation(std::make_shared<BlockOperation>(std::move(block)));
}

std::size_t OperationQueue::operationCount() const {
  return core_->count.load(std::memory_order_acquire);
}

std::vector<std::shared_ptr<Operation>> OperationQueue::operations() const {
  std::vector<std::shared_ptr<Operation>> result;
  std::lock_guard lock(core_->mutex);
  result.reserve(core_->all.size());
  for (const auto& entry : core_->all) {
    result.push_back(entry->operation);
  }
  return result;
}

void OperationQueue::cancelAllOperations() {
  for (const auto& operation : operations()) {
    operation->cancel();
  }
}

void OperationQueue::waitUntilAllOperationsAreFinished() {
  std::unique_lock lock(core_->mutex);
  core_->drained.wait(lock, [this] { return core_->all.empty(); });
}

}  // namespace vorn

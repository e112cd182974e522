// OperationQueue: starts Operations on pool threads once they are ready, in the order they
// were added, never more than maxConcurrentOperationCount at a time.
//
// An operation is started when it is ready (its dependencies finished, or it was cancelled)
// and leaves the queue when it announces that it has finished. Cancelled operations are still
// started, so they finish and run their completion blocks. With a maximum of 1, operations
// run strictly one after another in the order they were added (among the ready ones).
// The default maximum (-1) sets no limit of the queue's own: the worker pool decides how
// many run at once, and it grows when operations block.
//
// Ownership: hold it by value or by pointer; it is neither copyable nor movable. Destroying
// the queue does not cancel or wait: operations already added still run to completion, their
// bookkeeping kept alive by the operations themselves (as Foundation's queue does). An
// operation that never becomes ready keeps that bookkeeping alive for good.
//
// Thread safety: every member function may be called from any thread. The queue holds no
// lock of its own while it calls into an operation (start(), isReady(), cancel()) or while
// observers and completion blocks run. waitUntilAllOperationsAreFinished() called from an
// operation of the same queue waits for itself and never returns, as in Foundation.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/runtime/Operation.hpp"

namespace vorn {

namespace detail {
struct OperationQueueCore;
}

class VORN_API OperationQueue {
 public:
  static constexpr int kDefaultMaxConcurrentOperationCount = -1;

  OperationQueue();
  ~OperationQueue();

  OperationQueue(const OperationQueue&) = delete;
  OperationQueue& operator=(const OperationQueue&) = delete;

  /// The queue that started the operation running on the calling thread, or nullptr.
  static OperationQueue* current();

  void setName(std::string name);
  std::string name() const;

  /// Any value >= 0, or kDefaultMaxConcurrentOperationCount; other negatives mean the same
  /// as the default. 0 holds back every operation not yet started.
  void setMaxConcurrentOperationCount(int count);
  int maxConcurrentOperationCount() const;

  /// Adds an operation and returns at once. A null operation, one already added to a queue,
  /// or one that is executing or finished is ignored.
  void addOperation(std::shared_ptr<Operation> operation);
  /// Wraps `block` in a BlockOperation and adds it.
  void addOperation(std::function<void()> block);

  /// Operations added and not yet finished.
  std::size_t operationCount() const;
  /// Those operations, in the order they were added.
  std::vector<std::shared_ptr<Operation>> operations() const;

  void cancelAllOperations();
  /// Blocks until every operation added so far (and any added meanwhile) has finished.
  void waitUntilAllOperationsAreFinished();

 private:
  std::shared_ptr<detail::OperationQueueCore> core_;
};

}  // namespace vorn

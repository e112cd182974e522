// How an Operation reaches the OperationQueue that accepted it (internal).
//
// The operation calls these outside its own lock, on the thread that made the change, like
// any key-value observer; it stops calling once it has reported the finish.
#pragma once

namespace vorn::detail {

struct OperationQueueLink {
  virtual ~OperationQueueLink() = default;
  /// The operation announced "isFinished" and isFinished() returned true; reported once.
  virtual void operationFinished() = 0;
  /// The operation announced "isReady": its dependencies or its cancellation changed.
  virtual void readinessMayHaveChanged() = 0;
};

}  // namespace vorn::detail

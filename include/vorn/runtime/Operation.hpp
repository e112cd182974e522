// Operation: a unit of work with a life cycle (ready, executing, finished), dependencies,
// cancellation and a completion block, run by an OperationQueue or by calling start().
//
// The default start() runs main() on the calling thread. Asynchronous operations override
// start(), isExecuting() and isFinished(), keep their own state, and announce every change of
// "isExecuting" and "isFinished" through willChangeValueForKey()/didChangeValueForKey(). A
// queue treats an operation as finished when it is told, through a did-change of
// "isFinished", that isFinished() now returns true - from any thread, at any time, even
// from inside start().
//
// Key-value notifications go to observers registered with addObserver(); they are called
// synchronously on the thread that made the change, with no lock of this class held, so an
// observer may call back into the operation or remove itself. The keys used here are
// "isExecuting", "isFinished", "isCancelled" and "isReady".
//
// Ownership: operations are always held by std::shared_ptr (dependencies and readiness
// notifications rely on shared_from_this()). An operation keeps its dependencies alive; a
// dependency only refers weakly to the operations that depend on it.
//
// Thread safety: every public member function may be called from any thread.
//
// Errors: an exception escaping main() is caught and dropped by the default start(), so the
// operation still finishes. The completion block runs on a pool thread under the same rule.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string_view>
#include <utility>
#include <vector>

#include "vorn/base/Export.hpp"

namespace vorn {

namespace detail {
struct OperationQueueCore;
struct OperationQueueLink;
}  // namespace detail

class VORN_API Operation : public std::enable_shared_from_this<Operation> {
 public:
  using KeyObserver = std::function<void(std::string_view key, bool isPrior)>;
  using ObserverToken = std::uint64_t;

  Operation();
  virtual ~Operation();

  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;

  /// Runs the operation on the calling thread: a cancelled operation just finishes, any
  /// other goes executing, runs main() and finishes. Calling it twice does nothing.
  virtual void start();
  /// The work of a synchronous operation; empty by default.
  virtual void main();

  /// Marks the operation cancelled, which also makes it ready: a queue then starts it and it
  /// finishes without running main(). Work already running should poll isCancelled().
  virtual void cancel();
  bool isCancelled() const noexcept;

  virtual bool isExecuting() const;
  virtual bool isFinished() const;
  /// True when every dependency has finished, or when the operation is cancelled.
  virtual bool isReady() const;
  /// Same as isAsynchronous(); kept for callers written against the older name.
  virtual bool isConcurrent() const;
  virtual bool isAsynchronous() const;

  virtual void addDependency(std::shared_ptr<Operation> operation);
  virtual void removeDependency(const std::shared_ptr<Operation>& operation);
  std::vector<std::shared_ptr<Operation>> dependencies() const;

  /// Sets the closure run once, on a pool thread, after the operation has finished.
  void setCompletionBlock(std::function<void()> block);

  ObserverToken addObserver(KeyObserver observer);
  void removeObserver(ObserverToken token);

 protected:
  /// Tell observers that `key` is about to change (isPrior == true) ...
  void willChangeValueForKey(std::string_view key);
  /// ... and that it has changed (isPrior == false). A did-change of "isFinished" with
  /// isFinished() true also wakes the operations depending on this one and schedules the
  /// completion block, once.
  void didChangeValueForKey(std::string_view key);

 private:
  friend class OperationQueue;
  friend struct detail::OperationQueueCore;

  // `finishedNow`: a did-change of "isFinished" with isFinished() true.
  void notifyObservers(std::string_view key, bool isPrior, bool finishedNow);
  void attachToQueue(std::shared_ptr<detail::OperationQueueLink> link);
  void handleFinished();
  void addDependent(const Operation* dependent, std::weak_ptr<Operation> weak);
  void removeDependent(const Operation* dependent);
  void readinessMayHaveChanged();

  std::atomic<bool> started_{false};  // set by the one start() call that runs
  std::atomic<bool> cancelled_{false};
  std::atomic<bool> executing_{false};
  std::atomic<bool> finished_{false};
  std::atomic<bool> finishHandled_{false};
  // Set by the first OperationQueue that accepts the operation; an operation runs once.
  std::atomic<bool> enqueued_{false};
  // Mirrors observers_.size(), so that an announcement nobody listens to takes no lock.
  std::atomic<std::size_t> observerCount_{0};

  mutable std::mutex mutex_;
  std::vector<std::shared_ptr<Operation>> dependencies_;  // guarded by mutex_
  // Guarded by mutex_. The raw pointer identifies the dependent without locking the weak
  // pointer, which could otherwise end up destroying the dependent under our lock.
  std::vector<std::pair<const Operation*, std::weak_ptr<Operation>>> dependents_;
  std::vector<std::pair<ObserverToken, std::shared_ptr<const KeyObserver>>>
      observers_;                     // guarded by mutex_
  ObserverToken nextToken_ = 1;       // guarded by mutex_
  std::function<void()> completion_;  // guarded by mutex_
  // Guarded by mutex_. The queue that accepted the operation hears of readiness and of the
  // finish directly rather than as a registered observer: a registration would cost the
  // queue several allocations per operation. Dropped once it has heard of the finish.
  std::shared_ptr<detail::OperationQueueLink> queueLink_;
};

}  // namespace vorn

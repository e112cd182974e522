// The shared state of an OperationQueue (internal): the operations it holds, the order they
// start in and the runner tasks that start them.
//
// Shared by the public object and by the entry of each operation it holds; an entry keeps it
// alive until its operation has finished.
//
// Operations that may start go, in start order, to `runnable`, from which runner tasks on the
// worker pool start them one after another. Handing each operation to the pool on its own
// would cost a pool hand-off, two closures and often a thread wake-up per operation; a runner
// that keeps going while work is queued pays that once per burst. Operations may still block
// for as long as they like: while anything waits in `runnable`, one more runner waits on the
// pool (`runnerQueued`), so no operation waits for another to finish, and the pool grows
// as usual when every worker is blocked.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "runtime/Deadline.hpp"
#include "runtime/OperationQueueLink.hpp"
#include "vorn/runtime/Operation.hpp"
#include "vorn/runtime/OperationQueue.hpp"

namespace vorn::detail {

struct OperationQueueCore : std::enable_shared_from_this<OperationQueueCore> {
  struct Entry final : OperationQueueLink {
    Entry(std::shared_ptr<Operation> op, std::shared_ptr<OperationQueueCore> owner)
        : operation(std::move(op)), core(std::move(owner)) {}

    void operationFinished() override { core->finished(*this); }
    void readinessMayHaveChanged() override { core->requestPump(); }

    const std::shared_ptr<Operation> operation;
    const std::shared_ptr<OperationQueueCore> core;
    bool started = false;                                  // guarded by core->mutex
    bool finished = false;                                 // guarded by core->mutex
    std::list<std::shared_ptr<Entry>>::iterator position;  // in `all`; guarded by core->mutex
  };

  // How long a runner keeps its worker once other pool work is waiting: long enough to
  // amortise the hand-off, short enough that other queues barely notice, and far below the
  // pool's stall interval, so a busy runner never reads as a blocked worker.
  static constexpr std::chrono::microseconds kRunnerSlice{250};

  /// The queue whose operation's start() runs on this thread, or null.
  static OperationQueue* current();

  explicit OperationQueueCore(OperationQueue* queueOwner) : owner(queueOwner) {}

  std::size_t limitLocked() const;
  void add(std::shared_ptr<Operation> operation);
  // Counts the entry as running and queues it for a runner; true when the caller must
  // submit a runner because none is waiting on the pool.
  bool makeRunnableLocked(std::shared_ptr<Entry> entry);
  bool claimRunnerLocked();
  void submitRunner();
  void runRunner();
  static bool sliceOver(std::optional<Deadline>& sliceEnd);
  // Moves ready operations, in the order they were added, to the runners while the limit
  // allows. One thread pumps at a time (others just ask it to go round again), which makes
  // it the only one to erase from `pending` and keeps its iterator valid while the lock is
  // dropped to ask an operation whether it is ready.
  void pump();
  void runStart(Operation& operation);
  // Notifications arrive on the notifying operation's thread, possibly while it holds its
  // own locks; pumping there would call other operations' isReady() under those locks and
  // open the door to lock-order inversions between operations. So the pump runs later: right
  // after start() returns when the notification came from inside it, else as a pool task.
  void requestPump();
  void finished(Entry& entry);

  std::atomic<OperationQueue*> owner;
  // Mirrors all.size(), so that operationCount() takes no lock: senders that check a bound
  // before every add would otherwise contend with the runners for `mutex`. Release/acquire:
  // a caller that sees the count drop also sees what the finished operations did.
  std::atomic<std::size_t> count{0};

  mutable std::mutex mutex;
  std::condition_variable drained;
  std::string name;                                                         // guarded by mutex
  int maxConcurrent = OperationQueue::kDefaultMaxConcurrentOperationCount;  // guarded by mutex
  std::list<std::shared_ptr<Entry>> all;        // guarded by mutex; added, not finished
  std::list<std::shared_ptr<Entry>> pending;    // guarded by mutex; not started, add order
  std::deque<std::shared_ptr<Entry>> runnable;  // guarded by mutex; counted in `running`
  std::size_t running = 0;                      // guarded by mutex
  bool runnerQueued = false;                    // guarded by mutex; a runner waits on the pool
  bool pumping = false;                         // guarded by mutex
  bool repump = false;                          // guarded by mutex
  bool deferredPumpScheduled = false;           // guarded by mutex
};

}  // namespace vorn::detail

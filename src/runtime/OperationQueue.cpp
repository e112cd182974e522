#include "vorn/runtime/OperationQueue.hpp"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <limits>
#include <list>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>

#include "runtime/Deadline.hpp"
#include "runtime/OperationQueueLink.hpp"
#include "runtime/WorkerPool.hpp"
#include "vorn/runtime/BlockOperation.hpp"
#include "vorn/runtime/DispatchQueue.hpp"

namespace vorn {
namespace detail {

namespace {
thread_local OperationQueue* tlCurrentQueue = nullptr;
// The queue whose start task is running on this thread, and whether a notification asked it
// to pump once start() has returned.
thread_local const void* tlStartingCore = nullptr;
thread_local bool tlPumpAfterStart = false;

class ScopedCurrentQueue {
 public:
  explicit ScopedCurrentQueue(OperationQueue* queue) : outer_(tlCurrentQueue) {
    tlCurrentQueue = queue;
  }
  ~ScopedCurrentQueue() { tlCurrentQueue = outer_; }
  ScopedCurrentQueue(const ScopedCurrentQueue&) = delete;
  ScopedCurrentQueue& operator=(const ScopedCurrentQueue&) = delete;

 private:
  OperationQueue* outer_;
};
}  // namespace

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

  explicit OperationQueueCore(OperationQueue* queueOwner) : owner(queueOwner) {}

  std::size_t limitLocked() const {
    return maxConcurrent < 0 ? std::numeric_limits<std::size_t>::max()
                             : static_cast<std::size_t>(maxConcurrent);
  }

  void add(std::shared_ptr<Operation> operation) {
    auto entry = std::make_shared<Entry>(std::move(operation), shared_from_this());
    // Attached before the entry is visible: a readiness change in between only triggers a
    // pump that finds nothing, and the code below picks the operation up.
    entry->operation->attachToQueue(entry);
    // Asked outside the lock, as pump() does: isReady() may take the operation's own locks.
    const bool ready = entry->operation->isReady();
    bool submit = false;
    bool pumpNeeded = false;
    {
      std::lock_guard lock(mutex);
      entry->position = all.insert(all.end(), entry);
      count.store(all.size(), std::memory_order_release);
      // Straight to the runners when nothing added earlier is still waiting to start.
      if (ready && pending.empty() && running < limitLocked()) {
        submit = makeRunnableLocked(entry);
      } else {
        pending.push_back(std::move(entry));
        pumpNeeded = true;
      }
    }
    if (submit) {
      submitRunner();
    }
    if (pumpNeeded) {
      pump();
    }
  }

  // Counts the entry as running and queues it for a runner; true when the caller must
  // submit a runner because none is waiting on the pool.
  bool makeRunnableLocked(std::shared_ptr<Entry> entry) {
    entry->started = true;
    ++running;
    runnable.push_back(std::move(entry));
    return claimRunnerLocked();
  }

  bool claimRunnerLocked() {
    if (runnerQueued) {
      return false;
    }
    runnerQueued = true;
    return true;
  }

  void submitRunner() {
    DispatchQueue::global().async([self = shared_from_this()] { self->runRunner(); });
  }

  void runRunner() {
    std::optional<Deadline> sliceEnd;  // set when other pool work is first seen waiting
    std::unique_lock lock(mutex);
    runnerQueued = false;
    while (!runnable.empty()) {
      std::shared_ptr<Entry> entry = std::move(runnable.front());
      runnable.pop_front();
      // The operation about to start may block; whatever waits behind it gets a runner of
      // its own.
      const bool sibling = !runnable.empty() && claimRunnerLocked();
      lock.unlock();
      if (sibling) {
        submitRunner();
      }
      runStart(*entry->operation);
      entry.reset();
      if (sliceOver(sliceEnd)) {
        return;
      }
      lock.lock();
    }
  }

  static bool sliceOver(std::optional<Deadline>& sliceEnd) {
    if (!WorkerPool::shared().hasWaitingTasks()) {
      return false;
    }
    if (!sliceEnd) {
      sliceEnd = deadlineAfter(kRunnerSlice);
      return false;
    }
    return std::chrono::steady_clock::now() >= *sliceEnd;
  }

  // Moves ready operations, in the order they were added, to the runners while the limit
  // allows. One thread pumps at a time (others just ask it to go round again), which makes
  // it the only one to erase from `pending` and keeps its iterator valid while the lock is
  // dropped to ask an operation whether it is ready.
  void pump() {
    std::unique_lock lock(mutex);
    if (pumping) {
      repump = true;
      return;
    }
    pumping = true;
    bool submit = false;
    do {
      repump = false;
      auto it = pending.begin();
      while (it != pending.end() && running < limitLocked()) {
        const std::shared_ptr<Entry> entry = *it;
        if (entry->finished) {
          it = pending.erase(it);
          continue;
        }
        lock.unlock();
        const bool ready = entry->operation->isReady();
        lock.lock();
        if (entry->finished) {
          it = pending.erase(it);
        } else if (ready && running < limitLocked()) {
          it = pending.erase(it);
          submit = makeRunnableLocked(entry) || submit;
        } else {
          ++it;
        }
      }
    } while (repump);
    pumping = false;
    lock.unlock();
    if (submit) {
      submitRunner();
    }
  }

  void runStart(Operation& operation) {
    ScopedCurrentQueue scope(owner.load(std::memory_order_acquire));
    const void* outerCore = std::exchange(tlStartingCore, this);
    const bool outerRequest = std::exchange(tlPumpAfterStart, false);
    try {
      operation.start();
    } catch (...) {
      // An operation's start() throwing must not take the worker with it. The operation
      // stays in the queue unless it announced that it finished.
    }
    const bool pumpNow = std::exchange(tlPumpAfterStart, outerRequest);
    tlStartingCore = outerCore;
    if (pumpNow) {
      pump();
    }
  }

  // Notifications arrive on the notifying operation's thread, possibly while it holds its
  // own locks; pumping there would call other operations' isReady() under those locks and
  // open the door to lock-order inversions between operations. So the pump runs later: right
  // after start() returns when the notification came from inside it, else as a pool task.
  void requestPump() {
    if (tlStartingCore == this) {
      tlPumpAfterStart = true;
      return;
    }
    {
      std::lock_guard lock(mutex);
      if (deferredPumpScheduled) {
        return;
      }
      deferredPumpScheduled = true;
    }
    DispatchQueue::global().async([self = shared_from_this()] {
      {
        std::lock_guard lock(self->mutex);
        self->deferredPumpScheduled = false;
      }
      self->pump();
    });
  }

  void finished(Entry& entry) {
    bool pumpNeeded = false;
    {
      std::lock_guard lock(mutex);
      if (entry.finished) {
        return;
      }
      entry.finished = true;
      if (entry.started) {
        --running;
      }
      // Only operations still waiting to start can gain from the freed place.
      pumpNeeded = !pending.empty();
      all.erase(entry.position);
      count.store(all.size(), std::memory_order_release);
      if (all.empty()) {
        drained.notify_all();
      }
    }
    if (pumpNeeded) {
      requestPump();
    }
  }

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

}  // namespace detail

OperationQueue::OperationQueue() : core_(std::make_shared<detail::OperationQueueCore>(this)) {}

OperationQueue::~OperationQueue() {
  core_->owner.store(nullptr, std::memory_order_release);
}

OperationQueue* OperationQueue::current() {
  return detail::tlCurrentQueue;
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

#include "vorn/runtime/OperationQueue.hpp"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <limits>
#include <list>
#include <mutex>
#include <string_view>
#include <utility>

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

// Shared by the public object and by the observer the queue registers on each of its
// operations; that observer keeps it alive until the operation has finished.
struct OperationQueueCore : std::enable_shared_from_this<OperationQueueCore> {
  struct Entry {
    std::shared_ptr<Operation> operation;
    Operation::ObserverToken token = 0;                    // guarded by mutex
    bool started = false;                                  // guarded by mutex
    bool finished = false;                                 // guarded by mutex
    std::list<std::shared_ptr<Entry>>::iterator position;  // in `all`; guarded by mutex
  };

  explicit OperationQueueCore(OperationQueue* queueOwner) : owner(queueOwner) {}

  std::size_t limitLocked() const {
    return maxConcurrent < 0 ? std::numeric_limits<std::size_t>::max()
                             : static_cast<std::size_t>(maxConcurrent);
  }

  // Starts ready operations in the order they were added while the limit allows. One thread
  // pumps at a time (others just ask it to go round again), which makes it the only one
  // to erase from `pending` and keeps its iterator valid while the lock is dropped to ask
  // an operation whether it is ready.
  void pump() {
    std::unique_lock lock(mutex);
    if (pumping) {
      repump = true;
      return;
    }
    pumping = true;
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
          entry->started = true;
          ++running;
          DispatchQueue::global().async(
              [self = shared_from_this(), entry] { self->runStart(*entry->operation); });
        } else {
          ++it;
        }
      }
    } while (repump);
    pumping = false;
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

  void finished(const std::shared_ptr<Entry>& entry) {
    const std::shared_ptr<OperationQueueCore> self = shared_from_this();
    Operation::ObserverToken token = 0;
    {
      std::lock_guard lock(mutex);
      if (entry->finished) {
        return;
      }
      entry->finished = true;
      all.erase(entry->position);
      if (entry->started) {
        --running;
      }
      token = entry->token;
      if (all.empty()) {
        drained.notify_all();
      }
    }
    entry->operation->removeObserver(token);
  }

  void observe(const std::shared_ptr<Entry>& entry, std::string_view key) {
    if (key == "isFinished") {
      if (entry->operation->isFinished()) {
        finished(entry);
        requestPump();
      }
    } else if (key == "isReady") {
      requestPump();
    }
  }

  std::atomic<OperationQueue*> owner;

  mutable std::mutex mutex;
  std::condition_variable drained;
  std::string name;                                                         // guarded by mutex
  int maxConcurrent = OperationQueue::kDefaultMaxConcurrentOperationCount;  // guarded by mutex
  std::list<std::shared_ptr<Entry>> all;      // guarded by mutex; added, not finished
  std::list<std::shared_ptr<Entry>> pending;  // guarded by mutex; not started, add order
  std::size_t running = 0;                    // guarded by mutex
  bool pumping = false;                       // guarded by mutex
  bool repump = false;                        // guarded by mutex
  bool deferredPumpScheduled = false;         // guarded by mutex
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
  using Entry = detail::OperationQueueCore::Entry;
  auto entry = std::make_shared<Entry>();
  entry->operation = std::move(operation);
  // Registered before the entry is visible: a readiness change in between only triggers a
  // pump that finds nothing, and the pump below picks the operation up.
  const Operation::ObserverToken token = entry->operation->addObserver(
      [core = core_, weak = std::weak_ptr<Entry>(entry)](std::string_view key, bool isPrior) {
        if (isPrior) {
          return;
        }
        if (const auto strong = weak.lock()) {
          core->observe(strong, key);
        }
      });
  {
    std::lock_guard lock(core_->mutex);
    entry->token = token;
    entry->position = core_->all.insert(core_->all.end(), entry);
    core_->pending.push_back(entry);
  }
  core_->pump();
}

void OperationQueue::addOperation(std::function<void()> block) {
  addOperation(std::make_shared<BlockOperation>(std::move(block)));
}

std::size_t OperationQueue::operationCount() const {
  std::lock_guard lock(core_->mutex);
  return core_->all.size();
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

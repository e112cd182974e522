#include "runtime/OperationQueueCore.hpp"

#include <cstdint>
#include <limits>
#include <utility>

#include "runtime/WorkerPool.hpp"
#include "vorn/runtime/DispatchQueue.hpp"

namespace vorn::detail {

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

OperationQueue* OperationQueueCore::current() {
  return tlCurrentQueue;
}

std::size_t OperationQueueCore::limitLocked() const {
  return maxConcurrent < 0 ? std::numeric_limits<std::size_t>::max()
                           : static_cast<std::size_t>(maxConcurrent);
}

void OperationQueueCore::add(std::shared_ptr<Operation> operation) {
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

bool OperationQueueCore::makeRunnableLocked(std::shared_ptr<Entry> entry) {
  entry->started = true;
  ++running;
  runnable.push_back(std::move(entry));
  return claimRunnerLocked();
}

bool OperationQueueCore::claimRunnerLocked() {
  if (runnerQueued) {
    return false;
  }
  runnerQueued = true;
  return true;
}

void OperationQueueCore::submitRunner() {
  DispatchQueue::global().async([self = shared_from_this()] { self->runRunner(); });
}

void OperationQueueCore::runRunner() {
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

bool OperationQueueCore::sliceOver(std::optional<Deadline>& sliceEnd) {
  if (!WorkerPool::shared().hasWaitingTasks()) {
    return false;
  }
  if (!sliceEnd) {
    sliceEnd = deadlineAfter(kRunnerSlice);
    return false;
  }
  return std::chrono::steady_clock::now() >= *sliceEnd;
}

void OperationQueueCore::pump() {
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

void OperationQueueCore::runStart(Operation& operation) {
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

void OperationQueueCore::requestPump() {
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

void OperationQueueCore::finished(Entry& entry) {
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

}  // namespace vorn::detail

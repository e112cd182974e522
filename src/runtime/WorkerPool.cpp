#include "runtime/WorkerPool.hpp"

#include <algorithm>
#include <system_error>
#include <thread>
#include <utility>

#include "base/SystemHooks.hpp"
#include "runtime/Deadline.hpp"

namespace vorn::detail {
namespace {
thread_local bool tlTaskEnding = false;

// Leaked on purpose: detached workers may still be inside it while the process exits. A
// forked child replaces it, and leaks the parent's copy too: its workers, and maybe the
// holder of its mutex, did not come along.
WorkerPool* gPool = nullptr;
}  // namespace

WorkerPool& WorkerPool::shared() {
  static const bool created = [] {
    gPool = new WorkerPool();
    addForkChildHandler([] { gPool = new WorkerPool(); });
    return true;
  }();
  (void)created;
  return *gPool;
}

WorkerPool::WorkerPool()
    : baseThreads_(std::max<std::size_t>(2, std::thread::hardware_concurrency())) {}

void WorkerPool::submit(std::function<void()> task) {
  std::lock_guard lock(mutex_);
  ready_.push_back(std::move(task));
  waiting_.store(ready_.size(), std::memory_order_relaxed);
  if (ready_.size() <= ending_.load() + spinning_) {
    // A worker finishing its task or watching for the next one will take this one.
  } else if (!sleepers_.empty()) {
    Sleeper* sleeper = sleepers_.back();
    sleepers_.pop_back();
    sleeper->woken = true;
    sleeper->wake.notify_one();
  } else if (threads_ < baseThreads_) {
    spawnWorkerLocked();
  } else {
    wakeMonitorLocked();
  }
}

void WorkerPool::wakeMonitorLocked() {
  if (monitorParked_) {
    monitorParked_ = false;
    monitorWake_.notify_one();
  }
}

void WorkerPool::taskEnding() noexcept {
  if (!tlTaskEnding) {
    tlTaskEnding = true;
    ending_.fetch_add(1);
  }
}

void WorkerPool::spawnWorkerLocked() {
  const bool extra = threads_ >= baseThreads_;
  try {
    std::thread([this, extra] { workerLoop(extra); }).detach();
  } catch (const std::system_error&) {
    // Out of threads: the existing workers will get to the task eventually, and the monitor
    // tries again should they all be stuck.
    wakeMonitorLocked();
    return;
  }
  ++threads_;
  if (!monitorStarted_) {
    try {
      std::thread([this] { monitorLoop(); }).detach();
      monitorStarted_ = true;
    } catch (const std::system_error&) {
      // Without a monitor the pool cannot grow past a stall, but it still runs.
    }
  }
}

void WorkerPool::workerLoop(bool extra) {
  std::unique_lock lock(mutex_);
  for (;;) {
    while (ready_.empty() && !spinForTaskLocked(lock)) {
      Sleeper sleeper;
      sleepers_.push_back(&sleeper);
      if (extra) {
        sleeper.wake.wait_for(lock, kIdleRetirement, [&] { return sleeper.woken; });
      } else {
        sleeper.wake.wait(lock, [&] { return sleeper.woken; });
      }
      if (!sleeper.woken) {
        std::erase(sleepers_, &sleeper);
        if (ready_.empty()) {
          --threads_;
          return;
        }
      }
    }
    std::function<void()> task = std::move(ready_.front());
    ready_.pop_front();
    waiting_.store(ready_.size(), std::memory_order_relaxed);
    ++taken_;
    lock.unlock();
    task();
    // The captures go first, outside the lock: a destructor may post work and wait for it,
    // and that work must still wake an idle worker instead of counting on this one.
    task = nullptr;
    taskEnding();
    lock.lock();
    ending_.fetch_sub(1);
    tlTaskEnding = false;
  }
}

// Returns true when a task arrived within the spin window. Only one worker spins at a time:
// on a small machine a second spinner would steal the core the producer needs.
bool WorkerPool::spinForTaskLocked(std::unique_lock<std::mutex>& lock) {
  if (spinning_ > 0) {
    return false;
  }
  ++spinning_;
  lock.unlock();
  const auto deadline = deadlineAfter(kSpinBeforeParking);
  while (waiting_.load(std::memory_order_relaxed) == 0 &&
         std::chrono::steady_clock::now() < deadline) {
    // Yield rather than pause: the producer this worker just woke is often placed on this
    // very core, and a tight spin would only delay the post it is waiting for.
    std::this_thread::yield();
  }
  lock.lock();
  --spinning_;
  return !ready_.empty();
}

void WorkerPool::monitorLoop() {
  std::unique_lock lock(mutex_);
  for (;;) {
    // With nothing ready, nothing can be stuck behind blocked workers, however many there
    // are: sleep until submit() finds every worker busy, so that an idle process is not woken.
    if (ready_.empty()) {
      monitorParked_ = true;
      monitorWake_.wait(lock, [this] { return !monitorParked_; });
    }
    // If no worker takes a task for a whole interval while work waits and nobody is idle,
    // every worker has been stuck in its task that long, and only a new thread can make
    // progress.
    const std::uint64_t seen = taken_;
    const auto deadline = deadlineAfter(kStallInterval);
    monitorWake_.wait_until(lock, deadline,
                            [&] { return std::chrono::steady_clock::now() >= deadline; });
    if (!ready_.empty() && sleepers_.empty() && taken_ == seen && threads_ < kMaxThreads) {
      spawnWorkerLocked();
    }
  }
}

}  // namespace vorn::detail

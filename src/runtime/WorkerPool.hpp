// The threads behind every DispatchQueue (internal).
//
// Tasks wait on one ready list. Workers start lazily up to the base count (the number of
// hardware threads, at least two). A monitor thread watches for work that makes no progress
// because every worker is blocked and then adds a worker, up to kMaxThreads; workers beyond
// the base count retire after kIdleRetirement without work. Idle workers are woken
// last-in first-out, one per task, never all at once. The monitor ticks every
// kStallInterval only while tasks are waiting; it is woken when a task finds every worker
// busy and parks as soon as nothing is ready, blocked workers or not. The pool is immortal;
// a forked child starts over with a fresh one, and the parent's pending tasks stay behind.
//
// A worker that runs out of tasks first watches the ready list for up to kSpinBeforeParking
// (one worker at a time, yielding the core between looks) before it parks. A producer that posts
// again right after its last item ran, the usual request/response rhythm, then hands over without
// any system call on either side; the window is short enough that an idle pool costs nothing.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <vector>

namespace vorn::detail {

class WorkerPool {
 public:
  static constexpr std::size_t kMaxThreads = 64;
  static constexpr std::chrono::seconds kIdleRetirement{5};
  static constexpr std::chrono::milliseconds kStallInterval{10};
  static constexpr std::chrono::microseconds kSpinBeforeParking{8};

  static WorkerPool& shared();

  /// Queues a task. Tasks must not throw.
  void submit(std::function<void()> task);

  /// True when tasks are queued that no worker has taken yet; a worker draining a serial
  /// queue uses it to decide whether to yield or keep going.
  /// Called by a task that is about to return, so that work submitted from now on waits
  /// for this worker instead of waking another one. A producer that posts again as soon as
  /// its previous item ran would otherwise always wake a second thread and pay a full
  /// sleep/wake cycle per item. Safe to call more than once per task.
  void taskEnding() noexcept;

  bool hasWaitingTasks() const noexcept { return waiting_.load(std::memory_order_relaxed) > 0; }

 private:
  WorkerPool();

  // A worker waiting for a task; lives on that worker's stack.
  struct Sleeper {
    std::condition_variable wake;
    bool woken = false;  // guarded by mutex_
  };

  void spawnWorkerLocked();
  void wakeMonitorLocked();
  void workerLoop(bool extra);
  bool spinForTaskLocked(std::unique_lock<std::mutex>& lock);
  void monitorLoop();

  const std::size_t baseThreads_;

  std::mutex mutex_;
  std::condition_variable monitorWake_;
  std::deque<std::function<void()>> ready_;  // guarded by mutex_
  std::size_t threads_ = 0;                  // guarded by mutex_
  // Guarded by mutex_. Idle workers, most recently idle last: waking the last one keeps a
  // single hot thread serving a queue that is fed one item at a time, which lets the kernel
  // keep it next to the producer, and leaves the coldest threads to retire.
  std::vector<Sleeper*> sleepers_;
  std::uint64_t taken_ = 0;      // guarded by mutex_; tasks handed to workers
  bool monitorStarted_ = false;  // guarded by mutex_
  bool monitorParked_ = false;   // guarded by mutex_
  // Guarded by mutex_. Workers watching ready_ before they park; like ending_, each one is
  // certain to look at ready_ again, so submit() need not wake anybody for it.
  std::size_t spinning_ = 0;
  // Workers past the end of their task that have not yet retaken mutex_; each is certain to
  // look at ready_ before it sleeps. Incremented without the lock, decremented under it.
  std::atomic<std::size_t> ending_{0};
  std::atomic<std::size_t> waiting_{0};  // mirrors ready_.size() for lock-free peeks
};

}  // namespace vorn::detail

#include "runtime/DelayTimer.hpp"

#include <system_error>
#include <thread>
#include <utility>

namespace vorn::detail {

DelayTimer& DelayTimer::shared() {
  // Leaked on purpose, like the worker pool: its thread never stops.
  static DelayTimer* timer = new DelayTimer();
  return *timer;
}

void DelayTimer::schedule(std::chrono::steady_clock::time_point deadline,
                          std::shared_ptr<QueueState> target, std::function<void()> work) {
  std::lock_guard lock(mutex_);
  if (!started_) {
    try {
      std::thread([this] { run(); }).detach();
      started_ = true;
    } catch (const std::system_error&) {
      // No timer thread: run the work late rather than never.
      enqueue(target, std::move(work));
      return;
    }
  }
  const bool earliest = heap_.empty() || deadline < heap_.top().deadline;
  heap_.push(Entry{deadline, nextSequence_++, std::move(target), std::move(work)});
  if (earliest) {
    changed_.notify_one();
  }
}

void DelayTimer::run() {
  std::unique_lock lock(mutex_);
  for (;;) {
    if (heap_.empty()) {
      changed_.wait(lock);
      continue;
    }
    const auto deadline = heap_.top().deadline;
    if (std::chrono::steady_clock::now() < deadline) {
      changed_.wait_until(lock, deadline);
      continue;
    }
    // priority_queue::top() is const; the entry is copied out once, then popped.
    Entry due = heap_.top();
    heap_.pop();
    lock.unlock();
    enqueue(due.target, std::move(due.work));
    due = Entry{};
    lock.lock();
  }
}

}  // namespace vorn::detail

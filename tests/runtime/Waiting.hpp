// Condition waits with a deadline for the runtime tests: a test that would hang fails
// instead, and none of them sleeps hoping that something has happened meanwhile.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace vorn::test {

inline constexpr std::chrono::seconds kDeadline{5};

/// A one-shot count-down that can be waited on with a deadline.
class Latch {
 public:
  explicit Latch(int count = 1) : count_(count) {}

  void countDown() {
    std::lock_guard lock(mutex_);
    if (count_ > 0 && --count_ == 0) {
      done_.notify_all();
    }
  }

  /// True when the count reached zero before `timeout`.
  bool wait(std::chrono::nanoseconds timeout = kDeadline) {
    std::unique_lock lock(mutex_);
    return done_.wait_for(lock, timeout, [this] { return count_ == 0; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable done_;
  int count_;
};

/// Polls `condition` until it holds or the deadline passes; for state that offers nothing
/// to block on (counters read through the public API).
template <class Condition>
bool eventually(Condition condition, std::chrono::nanoseconds timeout = kDeadline) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= deadline) {
      return false;
    }
    std::this_thread::yield();
  }
  return true;
}

}  // namespace vorn::test

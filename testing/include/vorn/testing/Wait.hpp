// Waiting on a condition with a deadline, instead of sleeping and hoping: a test that would
// hang fails instead.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace vorn::testing {

/// How long a test waits for something that should happen at once.
inline constexpr std::chrono::seconds kDeadline{10};

/// Polls `condition` until it holds or `timeout` passes; returns its last value. For state
/// that offers nothing to block on (counters read through the public API).
template <class Condition>
bool waitUntil(Condition condition, std::chrono::nanoseconds timeout = kDeadline) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= deadline)
      return condition();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

/// A one-shot count-down that can be waited on with a deadline.
class Latch {
 public:
  explicit Latch(int count = 1) : count_(count) {}

  void countDown() {
    std::lock_guard lock(mutex_);
    if (count_ > 0 && --count_ == 0)
      done_.notify_all();
  }

  /// True when the count reached zero before `timeout`.
  bool wait(std::chrono::nanoseconds timeout = kDeadline) {
    std::unique_lock lock(mutex_);
    return done_.wait_for(lock, timeout, [this] { return count_ == 0; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable done_;
  int count_;  // guarded by mutex_
};

}  // namespace vorn::testing

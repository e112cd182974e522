// The one thread that holds delayed work until its deadline (internal).
//
// Entries sit in a min-heap ordered by steady-clock deadline (ties in the order they were
// scheduled); at its deadline an entry is appended to its queue. The timer is immortal and
// its thread starts with the first entry.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <queue>
#include <vector>

#include "runtime/QueueState.hpp"

namespace vorn::detail {

class DelayTimer {
 public:
  static DelayTimer& shared();

  void schedule(std::chrono::steady_clock::time_point deadline, std::shared_ptr<QueueState> target,
                std::function<void()> work);

 private:
  struct Entry {
    std::chrono::steady_clock::time_point deadline;
    std::uint64_t sequence;
    std::shared_ptr<QueueState> target;
    std::function<void()> work;
  };
  struct Later {
    bool operator()(const Entry& a, const Entry& b) const {
      return a.deadline != b.deadline ? a.deadline > b.deadline : a.sequence > b.sequence;
    }
  };

  DelayTimer() = default;
  void run();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::priority_queue<Entry, std::vector<Entry>, Later> heap_;  // guarded by mutex_
  std::uint64_t nextSequence_ = 0;                              // guarded by mutex_
  bool started_ = false;                                        // guarded by mutex_
};

}  // namespace vorn::detail

// The one thread that holds delayed work until its deadline (internal).
//
// Entries are kept in steady-clock deadline order (ties in the order they were scheduled); at
// its deadline an entry is appended to its queue. An entry can be cancelled until then, which
// destroys its work at once: work that is no longer wanted must not keep what it captured
// alive until a distant deadline, nor wake the thread when that deadline comes. The timer is
// immortal and its thread starts with the first entry; a forked child starts over with a fresh
// timer, and the parent's entries stay behind.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "runtime/Deadline.hpp"
#include "runtime/QueueState.hpp"

namespace vorn::detail {

class DelayTimer {
 public:
  /// Names a scheduled entry for cancel(); 0 names none.
  using Ticket = std::uint64_t;

  static DelayTimer& shared();

  /// Appends `work` to the queue behind `target` at `deadline`; a null target stands for the
  /// global queue.
  Ticket schedule(Deadline deadline, std::shared_ptr<QueueState> target,
                  std::function<void()> work);

  /// Drops the entry unless it has already been handed to its queue.
  void cancel(Ticket ticket);

 private:
  struct Entry {
    std::shared_ptr<QueueState> target;
    std::function<void()> work;
  };
  using Key = std::pair<Deadline, Ticket>;

  DelayTimer() = default;
  static void replaceInForkedChild();
  void run();
  static void handOver(Entry entry);

  std::mutex mutex_;
  std::condition_variable changed_;
  std::map<Key, Entry> entries_;                    // guarded by mutex_
  std::unordered_map<Ticket, Deadline> deadlines_;  // guarded by mutex_; the key of each entry
  Ticket nextTicket_ = 1;                           // guarded by mutex_
  bool started_ = false;                            // guarded by mutex_
};

}  // namespace vorn::detail

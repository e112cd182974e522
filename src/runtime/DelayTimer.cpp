#include "runtime/DelayTimer.hpp"

#include <system_error>
#include <thread>
#include <utility>

#include "base/SystemHooks.hpp"
#include "vorn/runtime/DispatchQueue.hpp"

namespace vorn::detail {
namespace {
// Leaked on purpose, like the worker pool: its thread never stops. Replaced, like the pool,
// in a forked child, which does not have that thread.
DelayTimer* gTimer = nullptr;
}  // namespace

DelayTimer& DelayTimer::shared() {
  static const bool created = [] {
    gTimer = new DelayTimer();
    addForkChildHandler(&DelayTimer::replaceInForkedChild);
    return true;
  }();
  (void)created;
  return *gTimer;
}

void DelayTimer::replaceInForkedChild() {
  auto* fresh = new DelayTimer();
  // Tickets keep counting, so that one handed out before the fork never names a new entry.
  fresh->nextTicket_ = gTimer->nextTicket_;
  gTimer = fresh;
}

DelayTimer::Ticket DelayTimer::schedule(Deadline deadline, std::shared_ptr<QueueState> target,
                                        std::function<void()> work) {
  std::lock_guard lock(mutex_);
  if (!started_) {
    try {
      std::thread([this] { run(); }).detach();
      started_ = true;
    } catch (const std::system_error&) {
      // No timer thread: run the work late rather than never.
      handOver(Entry{std::move(target), std::move(work)});
      return 0;
    }
  }
  const Ticket ticket = nextTicket_++;
  const bool earliest = entries_.empty() || deadline < entries_.begin()->first.first;
  entries_.emplace(Key{deadline, ticket}, Entry{std::move(target), std::move(work)});
  deadlines_.emplace(ticket, deadline);
  if (earliest) {
    changed_.notify_one();
  }
  return ticket;
}

void DelayTimer::cancel(Ticket ticket) {
  std::map<Key, Entry>::node_type dropped;  // destroyed after the lock is released
  std::lock_guard lock(mutex_);
  const auto it = deadlines_.find(ticket);
  if (it == deadlines_.end()) {
    return;
  }
  const Key key{it->second, ticket};
  const bool earliest = entries_.begin()->first == key;
  dropped = entries_.extract(key);
  deadlines_.erase(it);
  // The thread sleeps until the earliest deadline: told now, it waits for the next one (or
  // for ever), instead of waking an idle process at a deadline nobody wants any more.
  if (earliest) {
    changed_.notify_one();
  }
}

void DelayTimer::run() {
  std::unique_lock lock(mutex_);
  for (;;) {
    if (entries_.empty()) {
      changed_.wait(lock);
      continue;
    }
    const auto first = entries_.begin();
    // A copy: the entry may be cancelled while the thread waits.
    const Deadline deadline = first->first.first;
    if (std::chrono::steady_clock::now() < deadline) {
      changed_.wait_until(lock, deadline);
      continue;
    }
    Entry due = std::move(first->second);
    deadlines_.erase(first->first.second);
    entries_.erase(first);
    lock.unlock();
    handOver(std::move(due));
    lock.lock();
  }
}

void DelayTimer::handOver(Entry entry) {
  if (entry.target) {
    enqueue(entry.target, std::move(entry.work));
  } else {
    DispatchQueue::global().async(std::move(entry.work));
  }
}

}  // namespace vorn::detail

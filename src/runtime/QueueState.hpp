// The shared state behind a DispatchQueue (internal).
//
// The public object only holds a shared_ptr to it, and every pool task or timer entry that
// targets the queue holds another, so pending work survives the queue object.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace vorn {
class DispatchQueue;
}

namespace vorn::detail {

/// A thread blocked in sync() behind earlier work; lives on that thread's stack.
struct SyncTicket {
  std::condition_variable granted;
  bool isGranted = false;  // guarded by the queue's mutex
};

struct QueueItem {
  std::function<void()> work;    // empty for a sync ticket
  SyncTicket* ticket = nullptr;  // the waiting sync() call, handed the queue when reached
};

struct QueueState : std::enable_shared_from_this<QueueState> {
  QueueState(std::string queueLabel, bool isConcurrent, DispatchQueue* queueOwner)
      : label(std::move(queueLabel)), concurrent(isConcurrent), owner(queueOwner) {}

  const std::string label;
  const bool concurrent;
  // The public object, reset when it is destroyed; answers DispatchQueue::current().
  std::atomic<DispatchQueue*> owner;

  std::mutex mutex;
  std::deque<QueueItem> items;  // guarded by mutex
  // Guarded by mutex. `held`: a drain or a sync() call has the queue. `scheduled`: a drain
  // task sits on the pool's ready list. Invariant: items non-empty and not held => scheduled.
  bool held = false;
  bool scheduled = false;
};

/// Appends work to the queue behind `state` (what async() does, usable after the public
/// object is gone).
void enqueue(const std::shared_ptr<QueueState>& state, std::function<void()> work);

}  // namespace vorn::detail

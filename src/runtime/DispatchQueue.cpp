#include "vorn/runtime/DispatchQueue.hpp"

#include <array>
#include <cstddef>
#include <utility>

#include "runtime/Deadline.hpp"
#include "runtime/DelayTimer.hpp"
#include "runtime/QueueState.hpp"
#include "runtime/WorkerPool.hpp"

namespace vorn {
namespace detail {
namespace {

constexpr std::size_t kDrainBatch = 64;

// The queues held by the calling thread, innermost first: a drain or sync() pushes a frame
// for as long as it runs work. Used for current() and to spot a sync() on a queue the
// thread already holds.
struct HeldFrame {
  const QueueState* state;
  HeldFrame* outer;
};
thread_local HeldFrame* tlInnermost = nullptr;

class ScopedHold {
 public:
  explicit ScopedHold(const QueueState* state) : frame_{state, tlInnermost} {
    tlInnermost = &frame_;
  }
  ~ScopedHold() { tlInnermost = frame_.outer; }
  ScopedHold(const ScopedHold&) = delete;
  ScopedHold& operator=(const ScopedHold&) = delete;

 private:
  HeldFrame frame_;
};

bool heldByThisThread(const QueueState* state) {
  for (const HeldFrame* f = tlInnermost; f != nullptr; f = f->outer) {
    if (f->state == state) {
      return true;
    }
  }
  return false;
}

void runGuarded(const std::function<void()>& work) noexcept {
  try {
    work();
  } catch (...) {
    // A closure posted with async() has no caller left to report to; dropping the exception
    // keeps the worker (and the queue's order) alive.
  }
}

void drain(const std::shared_ptr<QueueState>& state);

void submitDrainLocked(const std::shared_ptr<QueueState>& state) {
  state->scheduled = true;
  WorkerPool::shared().submit([state] { drain(state); });
}

// Gives up the queue: straight to the next waiting sync() call if it is next in line,
// otherwise back to the pool if work remains. Called with the queue's mutex held.
void releaseLocked(const std::shared_ptr<QueueState>& state) {
  if (!state->items.empty() && state->items.front().ticket != nullptr) {
    SyncTicket* ticket = state->items.front().ticket;
    state->items.pop_front();
    ticket->isGranted = true;
    ticket->granted.notify_one();
    return;
  }
  state->held = false;
  if (!state->items.empty()) {
    submitDrainLocked(state);
  }
}

void drain(const std::shared_ptr<QueueState>& state) {
  std::array<std::function<void()>, kDrainBatch> batch;
  std::unique_lock lock(state->mutex);
  state->scheduled = false;
  state->held = true;
  ScopedHold hold(state.get());
  for (;;) {
    std::size_t count = 0;
    while (count < kDrainBatch && !state->items.empty() && state->items.front().ticket == nullptr) {
      batch[count++] = std::move(state->items.front().work);
      state->items.pop_front();
    }
    lock.unlock();
    for (std::size_t i = 0; i < count; ++i) {
      runGuarded(batch[i]);
      batch[i] = nullptr;
    }
    lock.lock();
    // Keep the thread while nobody else is waiting for the pool; otherwise step back so
    // that other queues get their turn.
    const bool keepGoing = !state->items.empty() && state->items.front().ticket == nullptr &&
                           !WorkerPool::shared().hasWaitingTasks();
    if (!keepGoing) {
      break;
    }
  }
  WorkerPool::shared().taskEnding();
  releaseLocked(state);
}

}  // namespace

void enqueue(const std::shared_ptr<QueueState>& state, std::function<void()> work) {
  if (state->concurrent) {
    WorkerPool::shared().submit([state, work = std::move(work)] {
      ScopedHold hold(state.get());
      runGuarded(work);
    });
    return;
  }
  {
    std::lock_guard lock(state->mutex);
    state->items.push_back(QueueItem{std::move(work), nullptr});
    if (state->held || state->scheduled) {
      return;
    }
    state->scheduled = true;
  }
  // Submitted after unlocking: the worker that picks the drain up locks the queue first
  // thing and should not find the producer still holding it.
  WorkerPool::shared().submit([state] { drain(state); });
}

}  // namespace detail

DispatchQueue::DispatchQueue(std::string label)
    : state_(std::make_shared<detail::QueueState>(std::move(label), false, this)) {}

DispatchQueue::DispatchQueue(ConcurrentTag)
    : state_(std::make_shared<detail::QueueState>("com.quorvantis.tessarine.global", true, this)) {}

DispatchQueue::~DispatchQueue() {
  state_->owner.store(nullptr, std::memory_order_release);
}

DispatchQueue& DispatchQueue::global() {
  // Never destroyed, so that app exit cannot pull the queue from under a running worker.
  static DispatchQueue* queue = new DispatchQueue(ConcurrentTag{});
  return *queue;
}

DispatchQueue* DispatchQueue::current() {
  const detail::HeldFrame* frame = detail::tlInnermost;
  return frame == nullptr ? nullptr : frame->state->owner.load(std::memory_order_acquire);
}

const std::string& DispatchQueue::label() const noexcept {
  return state_->label;
}

void DispatchQueue::async(std::function<void()> work) {
  if (work) {
    detail::enqueue(state_, std::move(work));
  }
}

void DispatchQueue::asyncAfter(std::chrono::nanoseconds delay, std::function<void()> work) {
  if (!work) {
    return;
  }
  if (delay <= std::chrono::nanoseconds::zero()) {
    detail::enqueue(state_, std::move(work));
    return;
  }
  detail::DelayTimer::shared().schedule(detail::deadlineAfter(delay), state_, std::move(work));
}

void DispatchQueue::sync(const std::function<void()>& work) {
  if (!work) {
    return;
  }
  detail::QueueState* state = state_.get();
  if (state->concurrent || detail::heldByThisThread(state)) {
    detail::ScopedHold hold(state);
    work();
    return;
  }
  {
    std::unique_lock lock(state->mutex);
    if (state->held || !state->items.empty()) {
      detail::SyncTicket ticket;
      state->items.push_back(detail::QueueItem{nullptr, &ticket});
      if (!state->held && !state->scheduled) {
        detail::submitDrainLocked(state_);
      }
      ticket.granted.wait(lock, [&] { return ticket.isGranted; });
    } else {
      state->held = true;
    }
  }
  // The queue is ours from here until release, also when `work` throws.
  struct Release {
    const std::shared_ptr<detail::QueueState>& state;
    ~Release() {
      std::lock_guard lock(state->mutex);
      detail::releaseLocked(state);
    }
  } release{state_};
  detail::ScopedHold hold(state);
  work();
}

}  // namespace vorn

#include "vorn/runtime/DispatchGroup.hpp"

#include "runtime/Deadline.hpp"
#include "runtime/QueueState.hpp"

namespace vorn {

DispatchGroup::DispatchGroup() = default;
DispatchGroup::~DispatchGroup() = default;

void DispatchGroup::enter() {
  std::lock_guard lock(mutex_);
  ++count_;
}

void DispatchGroup::leave() {
  std::vector<std::pair<std::shared_ptr<detail::QueueState>, std::function<void()>>> due;
  {
    std::lock_guard lock(mutex_);
    if (count_ == 0) {
      return;
    }
    if (--count_ > 0) {
      return;
    }
    due.swap(notify_);
    zero_.notify_all();
  }
  for (auto& [state, work] : due) {
    detail::enqueue(state, std::move(work));
  }
}

DispatchGroupWaitResult DispatchGroup::wait(std::chrono::nanoseconds timeout) {
  std::unique_lock lock(mutex_);
  return zero_.wait_until(lock, detail::deadlineAfter(timeout), [this] { return count_ == 0; })
             ? DispatchGroupWaitResult::success
             : DispatchGroupWaitResult::timedOut;
}

void DispatchGroup::wait() {
  std::unique_lock lock(mutex_);
  zero_.wait(lock, [this] { return count_ == 0; });
}

void DispatchGroup::notify(DispatchQueue& queue, std::function<void()> work) {
  if (!work) {
    return;
  }
  {
    std::lock_guard lock(mutex_);
    if (count_ > 0) {
      notify_.emplace_back(queue.state_, std::move(work));
      return;
    }
  }
  detail::enqueue(queue.state_, std::move(work));
}

}  // namespace vorn

#include "vorn/runtime/DelayedWork.hpp"

#include <utility>

#include "runtime/DelayTimer.hpp"
#include "vorn/runtime/DispatchQueue.hpp"

namespace vorn {

DelayedWork DelayedWork::schedule(std::chrono::nanoseconds delay, DispatchQueue& queue,
                                  std::function<void()> work) {
  if (!work) {
    return {};
  }
  if (delay <= std::chrono::nanoseconds::zero()) {
    queue.async(std::move(work));
    return {};
  }
  return DelayedWork(detail::DelayTimer::shared().schedule(detail::deadlineAfter(delay),
                                                           queue.state_, std::move(work)));
}

DelayedWork DelayedWork::schedule(std::chrono::nanoseconds delay, std::function<void()> work) {
  return schedule(delay, DispatchQueue::global(), std::move(work));
}

void DelayedWork::cancel() {
  if (const std::uint64_t ticket = std::exchange(ticket_, 0); ticket != 0) {
    detail::DelayTimer::shared().cancel(ticket);
  }
}

}  // namespace vorn

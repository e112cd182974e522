#include "vorn/runtime/DelayedWork.hpp"

#include <utility>

#include "runtime/DelayTimer.hpp"
#include "vorn/runtime/DispatchQueue.hpp"

namespace vorn {

DelayedWork DelayedWork::schedule(std::chrono::nanoseconds delay, std::function<void()> work) {
  if (!work) {
    return {};
  }
  if (delay <= std::chrono::nanoseconds::zero()) {
    DispatchQueue::global().async(std::move(work));
    return {};
  }
  // A null target stands for the global queue.
  return DelayedWork(detail::DelayTimer::shared().schedule(detail::deadlineAfter(delay), nullptr,
                                                           std::move(work)));
}

void DelayedWork::cancel() {
  if (const std::uint64_t ticket = std::exchange(ticket_, 0); ticket != 0) {
    detail::DelayTimer::shared().cancel(ticket);
  }
}

}  // namespace vorn

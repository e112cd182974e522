// Deadlines on the steady clock (internal).
//
// Callers say "wait forever" with the largest duration, and now() plus that wraps around to a
// moment long past, which turns an endless wait into none at all. The runtime computes every
// deadline here, saturating at the clock's last moment instead.
#pragma once

#include <chrono>

namespace vorn::detail {

using Deadline = std::chrono::steady_clock::time_point;

/// `timeout` from now, or the clock's last moment when that lies beyond it.
inline Deadline deadlineAfter(std::chrono::nanoseconds timeout) noexcept {
  const Deadline now = std::chrono::steady_clock::now();
  return timeout >= Deadline::max() - now ? Deadline::max() : now + timeout;
}

}  // namespace vorn::detail

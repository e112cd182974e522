// DelayedWork: a closure appended to a queue once a delay has passed, which can be called off
// until then.
//
// DispatchQueue::asyncAfter() cannot be taken back: work that is no longer wanted still wakes
// the process at its deadline, only to find it has nothing to do. A timer that is often
// re-armed or dropped before it fires (a flush made moot by a full batch, a retry made moot
// by a success) uses this instead, so that an idle process stays asleep. Cancelling destroys
// the closure at once, on the caller's thread, and lets the timer sleep until the next
// deadline that is still wanted.
//
// Ownership: a plain value naming one scheduled closure; copies name the same closure, and
// destroying one cancels nothing. Thread safety: every function may be called from any
// thread. Fork: a closure scheduled in the parent neither runs nor can be cancelled in a
// forked child.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "vorn/base/Export.hpp"

namespace vorn {

class DispatchQueue;

class VORN_API DelayedWork {
 public:
  /// Names no closure: cancel() does nothing.
  DelayedWork() = default;

  /// Appends `work` to `queue` once `delay` has elapsed on the steady clock (never earlier);
  /// a delay of zero or less appends it at once. An empty `work` schedules nothing.
  static DelayedWork schedule(std::chrono::nanoseconds delay, DispatchQueue& queue,
                              std::function<void()> work);

  /// schedule() on DispatchQueue::global().
  static DelayedWork schedule(std::chrono::nanoseconds delay, std::function<void()> work);

  /// Drops the closure unless it has already been appended to its queue; once it has,
  /// or when called again, does nothing.
  void cancel();

 private:
  explicit DelayedWork(std::uint64_t ticket) : ticket_(ticket) {}

  std::uint64_t ticket_ = 0;
};

}  // namespace vorn

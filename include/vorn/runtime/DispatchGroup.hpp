// DispatchGroup: counts outstanding pieces of work and lets a thread wait for all of them.
//
// enter() before starting a piece of work, leave() when it is done; wait() blocks until the
// count is back to zero. A leave() without a matching enter() is ignored rather than
// trapping, because nothing may fail loudly in the app's process.
//
// Ownership: plain object, neither copyable nor movable; it must outlive every thread still
// blocked in wait(). Thread safety: every member function may be called from any thread.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/runtime/DispatchQueue.hpp"

namespace vorn {

enum class DispatchGroupWaitResult { success, timedOut };

class VORN_API DispatchGroup {
 public:
  DispatchGroup();
  ~DispatchGroup();

  DispatchGroup(const DispatchGroup&) = delete;
  DispatchGroup& operator=(const DispatchGroup&) = delete;

  void enter();
  void leave();

  /// Blocks until the count is zero or `timeout` has passed on the steady clock.
  DispatchGroupWaitResult wait(std::chrono::nanoseconds timeout);
  /// Blocks until the count is zero.
  void wait();

  /// Posts `work` to `queue` once the count is zero (at once if it already is).
  void notify(DispatchQueue& queue, std::function<void()> work);

 private:
  std::mutex mutex_;
  std::condition_variable zero_;
  std::size_t count_ = 0;  // guarded by mutex_
  // Guarded by mutex_; posted and cleared each time the count drops to zero.
  std::vector<std::pair<std::shared_ptr<detail::QueueState>, std::function<void()>>> notify_;
};

}  // namespace vorn

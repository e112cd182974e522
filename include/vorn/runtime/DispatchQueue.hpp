// DispatchQueue: a labelled serial queue of closures, and the process-wide concurrent pool.
//
// Serial queues do not own threads. Every queue with pending work takes one place on the
// ready list of a shared worker pool; a worker drains a batch from it and hands it back if
// more remains, so a busy queue cannot starve the others. The pool grows when all of its
// workers are blocked and work is waiting (up to a fixed cap) and shrinks again when idle.
//
// Ownership: a DispatchQueue is owned by whoever created it and is neither copyable nor
// movable. Destroying it while work is still pending is safe: that work keeps the queue's
// internals alive and still runs, in order. global() is never destroyed.
//
// Thread safety: every member function may be called from any thread.
//
// Fork: the child of a fork() gets a pool and a delay timer of its own, so global(), new
// queues and queues that were idle at that moment work there as usual. Work pending in the
// parent stays with the parent; a serial queue that had work running or waiting when the
// process forked does not run again in the child.
//
// Errors: a closure run by async() or asyncAfter() that throws has its exception caught and
// dropped at the worker boundary, so one faulty closure cannot take the pool down. sync()
// runs the caller's closure on the caller's thread and lets its exception reach the caller
// (after releasing the queue).
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include "vorn/base/Export.hpp"
#include "vorn/runtime/Executor.hpp"

namespace vorn {

namespace detail {
struct QueueState;
}

class VORN_API DispatchQueue : public Executor {
 public:
  explicit DispatchQueue(std::string label);
  ~DispatchQueue() override;

  DispatchQueue(const DispatchQueue&) = delete;
  DispatchQueue& operator=(const DispatchQueue&) = delete;

  /// The concurrent queue backed directly by the worker pool: its async() runs closures in
  /// parallel and its sync() simply runs the closure on the caller's thread.
  static DispatchQueue& global();

  /// The queue whose work is running on the calling thread (the innermost one when sync()
  /// calls nest), or nullptr outside any queue. The pointer is only meaningful while that
  /// queue object is alive; it is nullptr for work that outlived its queue.
  static DispatchQueue* current();

  const std::string& label() const noexcept;

  /// Appends `work`; on a serial queue it runs after everything appended before it and
  /// never at the same time as other work of this queue.
  void async(std::function<void()> work) override;

  /// Appends `work` once `delay` has elapsed on the steady clock (never earlier).
  void asyncAfter(std::chrono::nanoseconds delay, std::function<void()> work);

  /// Runs `work` on the calling thread, after everything appended before the call and with
  /// the queue held exclusively, then returns. Called from work that already holds this
  /// queue (directly or through nested sync calls), it runs `work` inline at once instead of
  /// deadlocking: the caller already has the exclusivity sync would wait for.
  void sync(const std::function<void()>& work);

  /// sync() for closures that return a value.
  template <class F>
  requires(!std::is_void_v<std::invoke_result_t<F&>>) std::invoke_result_t<F&> sync(F&& work) {
    std::optional<std::invoke_result_t<F&>> result;
    sync(std::function<void()>([&] { result.emplace(work()); }));
    return std::move(*result);
  }

 private:
  struct ConcurrentTag {};
  explicit DispatchQueue(ConcurrentTag);

  friend class DelayedWork;
  friend class DispatchGroup;

  std::shared_ptr<detail::QueueState> state_;
};

}  // namespace vorn

// BaseOperation: an asynchronous Operation with an explicit three-state life cycle, guarded
// state transitions and an optional time-out. The SDK's own background work derives from it.
//
// Life cycle: `inactive` until start(), `executing` while it runs, `finished` for good. An
// operation cancelled before it starts still passes through `executing`: start() marks it
// executing, sees the cancellation and finishes it without calling main(). Invalid
// transitions (a second start(), finishing twice) are logged and ignored.
//
// Time-out: start() arms a timer for the time-out truncated to whole seconds (so 2.7 s fires
// after 2 s and 0.9 s at once). When it fires on a still-running operation, the operation
// is marked timed out, cancelled and finished; finishing first disarms it, so a finished
// operation is not kept in memory until its deadline. kNoTimeout never arms a timer.
//
// Subclasses put their work in main() and must call finish() when it is done, from any
// thread. Every state read and write holds one recursive lock, so a subclass may call back
// into the base class while holding it (see lock()). Observers are notified after that lock
// is released, so a state change is already visible to the "will" notification.
//
// Thread safety: every member function may be called from any thread.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <mutex>
#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/runtime/Operation.hpp"

namespace vorn {

class VORN_API BaseOperation : public Operation {
 public:
  enum class State : int { inactive = 0, executing = 1, finished = 2 };

  /// The time-out that never fires.
  static constexpr double kNoTimeout = std::numeric_limits<double>::max();
  /// The name of the lock guarding the state, as debugging tools show it.
  static constexpr std::string_view kLockName = "com.quorvantis.tessarine.operationLock";

  /// `timeout`: seconds after start() at which the operation times out.
  explicit BaseOperation(double timeout);
  BaseOperation() = delete;
  ~BaseOperation() override;

  bool isConcurrent() const override;
  bool isExecuting() const override;
  bool isFinished() const override;
  /// Dropped, with a log line, once the operation has started.
  void addDependency(std::shared_ptr<Operation> operation) override;
  void start() override;
  /// Finishes at once; subclasses replace it with their work.
  void main() override;

  State state() const;
  bool operationTimedOut() const;
  double timeout() const noexcept { return timeout_; }

 protected:
  /// Moves an executing operation to `finished`. Does nothing for one that already timed
  /// out and finished; any other call on a finished operation is an invalid transition.
  void finish();
  /// The lock guarding state() and operationTimedOut(); recursive.
  std::recursive_mutex& lock() const noexcept { return lock_; }

 private:
  bool markExecuting();
  void armTimeout();
  void fireTimeout();
  /// Moves to `target` if it follows the current state; releases `guard` (holding lock_)
  /// before telling anyone. False, logged, for an invalid transition.
  bool transition(State target, std::unique_lock<std::recursive_mutex>& guard);
  void announce(State reached);

  mutable std::recursive_mutex lock_;
  bool operationTimedOut_ = false;  // guarded by lock_
  // Guarded by lock_. The delay timer's entry for the armed time-out, 0 when none.
  std::uint64_t timeoutTimer_ = 0;
  State state_ = State::inactive;  // guarded by lock_
  const double timeout_;
};

}  // namespace vorn

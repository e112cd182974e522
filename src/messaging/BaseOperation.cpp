#include "vorn/messaging/BaseOperation.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <utility>

#include "runtime/Deadline.hpp"
#include "runtime/DelayTimer.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/runtime/Durations.hpp"

namespace vorn {
namespace {

constexpr std::string_view kInvalidTransition =
    "Operation transition state invalid. State not updated";

// Beyond any time-out a process lives to see; keeps the conversion to an integer count of
// seconds from overflowing for absurdly large (but finite) values.
constexpr double kLongestTimerSeconds = 100.0 * 365 * 24 * 3600;

void logInvalidTransition() {
  VORN_LOG_DEBUG(LoggerCategory::sdk, std::string(kInvalidTransition));
}

}  // namespace

BaseOperation::BaseOperation(double timeout) : timeout_(timeout) {}

BaseOperation::~BaseOperation() = default;

bool BaseOperation::isConcurrent() const {
  std::lock_guard guard(lock_);
  return isAsynchronous();
}

bool BaseOperation::isExecuting() const {
  std::lock_guard guard(lock_);
  return state_ == State::executing;
}

bool BaseOperation::isFinished() const {
  std::lock_guard guard(lock_);
  return state_ == State::finished;
}

BaseOperation::State BaseOperation::state() const {
  std::lock_guard guard(lock_);
  return state_;
}

bool BaseOperation::operationTimedOut() const {
  std::lock_guard guard(lock_);
  return operationTimedOut_;
}

void BaseOperation::addDependency(std::shared_ptr<Operation> operation) {
  if (state() != State::inactive) {
    VORN_LOG_DEBUG(LoggerCategory::sdk,
                   "Cannot add dependency when operation already started. Dependency dropped.");
    return;
  }
  // Added without the lock, because adding announces readiness to observers. A start()
  // racing with this call then behaves as if this call had come first.
  Operation::addDependency(std::move(operation));
}

void BaseOperation::start() {
  // A second start() is refused outright: running main() again would repeat work that
  // subclasses expect to do once.
  if (!markExecuting())
    return;
  if (isCancelled()) {
    finish();
  } else {
    main();
  }
}

void BaseOperation::main() {
  finish();
}

void BaseOperation::finish() {
  std::unique_lock guard(lock_);
  if (operationTimedOut_ && state_ == State::finished)
    return;
  const detail::DelayTimer::Ticket timer = std::exchange(timeoutTimer_, 0);
  transition(State::finished, guard);
  // The armed time-out holds a reference to this operation, which would keep its memory
  // until the deadline, possibly hours after it finished.
  if (timer != 0)
    detail::DelayTimer::shared().cancel(timer);
}

bool BaseOperation::markExecuting() {
  std::unique_lock guard(lock_);
  if (!transition(State::executing, guard))
    return false;
  armTimeout();
  return true;
}

void BaseOperation::armTimeout() {
  if (!(timeout_ < kNoTimeout) || isCancelled())
    return;
  // Whole seconds only: the fraction is dropped, so 0.9 s fires at once.
  const double seconds = std::clamp(std::trunc(timeout_), 0.0, kLongestTimerSeconds);
  const auto delay = durations::scaled(std::chrono::seconds(static_cast<std::int64_t>(seconds)));
  std::weak_ptr<Operation> weak = weak_from_this();
  // Armed under the lock: a finish() from another thread then either finds the timer to
  // cancel, or came first and nothing is armed.
  std::lock_guard guard(lock_);
  if (state_ != State::executing)
    return;
  timeoutTimer_ =
      detail::DelayTimer::shared().schedule(detail::deadlineAfter(delay), nullptr, [weak] {
        if (auto self = std::static_pointer_cast<BaseOperation>(weak.lock()))
          self->fireTimeout();
      });
}

void BaseOperation::fireTimeout() {
  {
    std::lock_guard guard(lock_);
    timeoutTimer_ = 0;
    if (state_ == State::finished || isCancelled())
      return;
    operationTimedOut_ = true;
  }
  // Cancelled without the lock: cancelling notifies observers.
  cancel();
  std::unique_lock guard(lock_);
  // A finish() that came in meanwhile has done the rest.
  if (state_ != State::finished)
    transition(State::finished, guard);
}

bool BaseOperation::transition(State target, std::unique_lock<std::recursive_mutex>& guard) {
  const bool valid = (state_ == State::inactive && target == State::executing) ||
                     (state_ == State::executing && target == State::finished);
  if (valid)
    state_ = target;
  // Decided under the lock, announced without it: an observer may call back into this
  // operation or wait for a thread that does.
  guard.unlock();
  if (!valid) {
    logInvalidTransition();
    return false;
  }
  announce(target);
  return true;
}

void BaseOperation::announce(State reached) {
  if (reached == State::executing) {
    willChangeValueForKey("isExecuting");
    didChangeValueForKey("isExecuting");
    return;
  }
  // Observers see "isFinished" settle before "isExecuting".
  willChangeValueForKey("isExecuting");
  willChangeValueForKey("isFinished");
  didChangeValueForKey("isFinished");
  didChangeValueForKey("isExecuting");
}

}  // namespace vorn

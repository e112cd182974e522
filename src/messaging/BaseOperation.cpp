#include "vorn/messaging/BaseOperation.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "vorn/logging/Log.hpp"
#include "vorn/runtime/DispatchQueue.hpp"
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
  std::lock_guard guard(lock_);
  if (state_ != State::inactive) {
    VORN_LOG_DEBUG(LoggerCategory::sdk,
                   "Cannot add dependency when operation already started. Dependency dropped.");
    return;
  }
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
  std::lock_guard guard(lock_);
  if (operationTimedOut_ && state_ == State::finished)
    return;
  transition(State::finished);
}

bool BaseOperation::markExecuting() {
  {
    std::lock_guard guard(lock_);
    if (state_ != State::inactive) {
      logInvalidTransition();
      return false;
    }
    transition(State::executing);
  }
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
  DispatchQueue::global().asyncAfter(delay, [weak] {
    if (auto self = std::static_pointer_cast<BaseOperation>(weak.lock()))
      self->fireTimeout();
  });
}

void BaseOperation::fireTimeout() {
  std::lock_guard guard(lock_);
  if (state_ == State::finished || isCancelled())
    return;
  operationTimedOut_ = true;
  cancel();
  if (state_ != State::finished)
    transition(State::finished);
}

void BaseOperation::transition(State target) {
  std::lock_guard guard(lock_);
  if (state_ == State::inactive && target == State::executing) {
    willChangeValueForKey("isExecuting");
    state_ = State::executing;
    didChangeValueForKey("isExecuting");
  } else if (state_ == State::executing && target == State::finished) {
    // Observers see "isFinished" settle before "isExecuting".
    willChangeValueForKey("isExecuting");
    willChangeValueForKey("isFinished");
    state_ = State::finished;
    didChangeValueForKey("isFinished");
    didChangeValueForKey("isExecuting");
  } else {
    logInvalidTransition();
  }
}

}  // namespace vorn

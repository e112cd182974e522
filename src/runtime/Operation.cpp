#include "vorn/runtime/Operation.hpp"

#include <algorithm>
#include <array>
#include <optional>

#include "runtime/OperationQueueLink.hpp"
#include "vorn/runtime/DispatchQueue.hpp"

namespace vorn {
namespace {
constexpr std::string_view kIsExecuting = "isExecuting";
constexpr std::string_view kIsFinished = "isFinished";
constexpr std::string_view kIsCancelled = "isCancelled";
constexpr std::string_view kIsReady = "isReady";

// The observers of one announcement, copied out of the lock. Up to a few are kept on the
// stack: an operation is announced six times on its way through a queue, and a heap copy
// each time would dominate the cost of a small operation. Few have more than one observer.
class ObserverSnapshot {
 public:
  using Observers = std::vector<
      std::pair<Operation::ObserverToken, std::shared_ptr<const Operation::KeyObserver>>>;

  explicit ObserverSnapshot(const Observers& observers) {
    if (observers.size() <= few_.size()) {
      std::transform(observers.begin(), observers.end(), few_.begin(),
                     [](const auto& entry) { return entry.second; });
      return;
    }
    many_.reserve(observers.size());
    for (const auto& entry : observers) {
      many_.push_back(entry.second);
    }
  }

  void notify(std::string_view key, bool isPrior) const {
    for (const auto& observer : few_) {
      if (observer) {
        (*observer)(key, isPrior);
      }
    }
    for (const auto& observer : many_) {
      (*observer)(key, isPrior);
    }
  }

 private:
  std::array<std::shared_ptr<const Operation::KeyObserver>, 4> few_;
  std::vector<std::shared_ptr<const Operation::KeyObserver>> many_;
};

}  // namespace

Operation::Operation() = default;
Operation::~Operation() = default;

void Operation::start() {
  // Claimed in one step: of two concurrent calls, only one may go on to run main().
  if (started_.exchange(true)) {
    return;
  }
  if (isCancelled()) {
    willChangeValueForKey(kIsFinished);
    finished_.store(true);
    didChangeValueForKey(kIsFinished);
    return;
  }
  willChangeValueForKey(kIsExecuting);
  executing_.store(true);
  didChangeValueForKey(kIsExecuting);
  try {
    main();
  } catch (...) {
    // The operation's own failure must not stop it from finishing: dependents and the queue
    // wait for that.
  }
  willChangeValueForKey(kIsExecuting);
  willChangeValueForKey(kIsFinished);
  executing_.store(false);
  finished_.store(true);
  didChangeValueForKey(kIsFinished);
  didChangeValueForKey(kIsExecuting);
}

void Operation::main() {}

void Operation::cancel() {
  if (cancelled_.load() || isFinished()) {
    return;
  }
  willChangeValueForKey(kIsCancelled);
  const bool wasCancelled = cancelled_.exchange(true);
  didChangeValueForKey(kIsCancelled);
  if (!wasCancelled) {
    readinessMayHaveChanged();
  }
}

bool Operation::isCancelled() const noexcept {
  return cancelled_.load();
}

bool Operation::isExecuting() const {
  return executing_.load();
}

bool Operation::isFinished() const {
  return finished_.load();
}

bool Operation::isReady() const {
  if (isCancelled()) {
    return true;
  }
  // Evaluated on a copy: a dependency's isFinished() may take that dependency's locks,
  // which must never nest inside ours.
  const std::vector<std::shared_ptr<Operation>> deps = dependencies();
  return std::all_of(deps.begin(), deps.end(), [](const auto& d) { return d->isFinished(); });
}

bool Operation::isConcurrent() const {
  return isAsynchronous();
}

bool Operation::isAsynchronous() const {
  return false;
}

void Operation::addDependency(std::shared_ptr<Operation> operation) {
  if (!operation || operation.get() == this) {
    return;
  }
  {
    std::lock_guard lock(mutex_);
    if (std::find(dependencies_.begin(), dependencies_.end(), operation) != dependencies_.end()) {
      return;
    }
    dependencies_.push_back(operation);
  }
  operation->addDependent(this, weak_from_this());
  // Announced after registering with the dependency: if it finished in between, a queue
  // re-evaluating readiness now sees it finished.
  readinessMayHaveChanged();
}

void Operation::removeDependency(const std::shared_ptr<Operation>& operation) {
  if (!operation) {
    return;
  }
  {
    std::lock_guard lock(mutex_);
    const auto it = std::find(dependencies_.begin(), dependencies_.end(), operation);
    if (it == dependencies_.end()) {
      return;
    }
    dependencies_.erase(it);
  }
  operation->removeDependent(this);
  readinessMayHaveChanged();
}

std::vector<std::shared_ptr<Operation>> Operation::dependencies() const {
  std::lock_guard lock(mutex_);
  return dependencies_;
}

void Operation::setCompletionBlock(std::function<void()> block) {
  std::lock_guard lock(mutex_);
  completion_ = std::move(block);
}

Operation::ObserverToken Operation::addObserver(KeyObserver observer) {
  std::lock_guard lock(mutex_);
  const ObserverToken token = nextToken_++;
  observers_.emplace_back(token, std::make_shared<const KeyObserver>(std::move(observer)));
  observerCount_.store(observers_.size(), std::memory_order_release);
  return token;
}

void Operation::removeObserver(ObserverToken token) {
  std::shared_ptr<const KeyObserver> removed;  // destroyed after the lock is released
  std::lock_guard lock(mutex_);
  const auto it = std::find_if(observers_.begin(), observers_.end(),
                               [token](const auto& entry) { return entry.first == token; });
  if (it != observers_.end()) {
    removed = std::move(it->second);
    observers_.erase(it);
    observerCount_.store(observers_.size(), std::memory_order_release);
  }
}

void Operation::willChangeValueForKey(std::string_view key) {
  notifyObservers(key, true, false);
}

void Operation::didChangeValueForKey(std::string_view key) {
  // Asked once and before any lock of ours: a subclass's isFinished() may take its own locks,
  // which must never nest inside ours.
  const bool finishedNow = key == kIsFinished && isFinished();
  notifyObservers(key, false, finishedNow);
  if (finishedNow && !finishHandled_.exchange(true)) {
    handleFinished();
  }
}

void Operation::notifyObservers(std::string_view key, bool isPrior, bool finishedNow) {
  const bool forQueue = finishedNow || (!isPrior && key == kIsReady);
  if (!forQueue && observerCount_.load(std::memory_order_acquire) == 0) {
    return;
  }
  std::optional<ObserverSnapshot> observers;
  std::shared_ptr<detail::OperationQueueLink> link;
  {
    std::lock_guard lock(mutex_);
    observers.emplace(observers_);
    if (finishedNow) {
      link = std::move(queueLink_);
    } else if (forQueue) {
      link = queueLink_;
    }
  }
  observers->notify(key, isPrior);
  if (link && finishedNow) {
    link->operationFinished();
  } else if (link) {
    link->readinessMayHaveChanged();
  }
}

void Operation::attachToQueue(std::shared_ptr<detail::OperationQueueLink> link) {
  std::lock_guard lock(mutex_);
  queueLink_ = std::move(link);
}

void Operation::handleFinished() {
  std::vector<std::pair<const Operation*, std::weak_ptr<Operation>>> dependents;
  std::function<void()> completion;
  {
    std::lock_guard lock(mutex_);
    dependents.swap(dependents_);
    completion.swap(completion_);
  }
  for (const auto& entry : dependents) {
    if (const auto dependent = entry.second.lock()) {
      dependent->readinessMayHaveChanged();
    }
  }
  if (completion) {
    DispatchQueue::global().async(std::move(completion));
  }
}

void Operation::addDependent(const Operation* dependent, std::weak_ptr<Operation> weak) {
  std::lock_guard lock(mutex_);
  if (!finishHandled_.load()) {
    dependents_.emplace_back(dependent, std::move(weak));
  }
}

void Operation::removeDependent(const Operation* dependent) {
  std::lock_guard lock(mutex_);
  std::erase_if(dependents_, [dependent](const auto& entry) {
    return entry.first == dependent || entry.second.expired();
  });
}

void Operation::readinessMayHaveChanged() {
  willChangeValueForKey(kIsReady);
  didChangeValueForKey(kIsReady);
}

}  // namespace vorn

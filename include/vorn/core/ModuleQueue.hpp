// ModuleQueue: one feature module's bounded, strictly sequential task queue.
//
// Operations run one at a time, in the order they were added, on an operation queue named
// "vornsdk.module.<module>.tasks" that is created on first use, so a module that never gets
// work costs nothing. At most 100 operations are held: the one that would be the 101st is
// dropped and the whole backlog is cancelled with it, deliberately, rather than only the
// newest (a module that stopped draining is better restarted than fed).
//
// Thread safety: every member function may be called from any thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>

#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/runtime/Operation.hpp"
#include "vorn/runtime/OperationQueue.hpp"

namespace vorn {

class VORN_API ModuleQueue {
 public:
  static constexpr std::size_t kLimit = 100;

  explicit ModuleQueue(ModuleName module);
  virtual ~ModuleQueue();

  ModuleQueue(const ModuleQueue&) = delete;
  ModuleQueue& operator=(const ModuleQueue&) = delete;

  ModuleName module() const noexcept { return module_; }
  const std::string& name() const noexcept { return name_; }
  std::size_t limit() const noexcept { return kLimit; }
  /// Creation time plus five seconds. Kept as data of the queue; nothing acts on it yet.
  std::chrono::system_clock::time_point deadline() const noexcept { return deadline_; }

  /// Adds the operation without waiting for it, or, when 100 are already held, cancels them
  /// all and drops this one.
  virtual void addOperation(std::shared_ptr<Operation> operation);
  /// Cancels every operation held, with a log line.
  void cancelAll();
  /// Operations added and not yet finished.
  std::size_t operationCount() const;

 private:
  OperationQueue& queue() const;  // requires queueLock_

  const ModuleName module_;
  const std::string name_;
  const std::chrono::system_clock::time_point deadline_;
  mutable std::mutex queueLock_;
  mutable std::unique_ptr<OperationQueue> queue_;  // guarded by queueLock_, created lazily
};

}  // namespace vorn

// Executor: something that runs closures later, somewhere else.
//
// The library posts work through this interface when it does not care which thread runs it,
// only that it runs soon and in the order posted by one caller. DispatchQueue implements it,
// and the platform's main queue (the host's UI thread, or our own loop) does too.
//
// Ownership: implementations are shared (std::shared_ptr) or immortal; an Executor must
// outlive every async() call made on it, but work already posted may outlive the Executor
// where the implementation says so. async() is thread-safe in every implementation.
#pragma once

#include <functional>

#include "vorn/base/Export.hpp"

namespace vorn {

class VORN_API Executor {
 public:
  virtual ~Executor();

  /// Queues `work` and returns at once. Never throws to the caller.
  virtual void async(std::function<void()> work) = 0;
};

}  // namespace vorn

// FakeCallLog: what a fake feature module records of the interface calls it gets, and the
// switch that makes its optional and pointer answers absent.
//
// Each call is kept with its operation name and its arguments as values (delegates and
// callbacks as a truth value: set or not), oldest first.
//
// Thread safety: every member may be called from any thread.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "vorn/base/Value.hpp"

namespace vorn::testing {

struct FakeCall {
  std::string operation;
  Array arguments;

  bool operator==(const FakeCall&) const = default;
};

class FakeCallLog {
 public:
  std::vector<FakeCall> calls() const;
  /// The names of the calls, oldest first.
  std::vector<std::string> operations() const;
  /// True: every optional or pointer answer is absent from now on; false (the default):
  /// present.
  void setAnswersAbsent(bool absent);

 protected:
  void record(std::string operation, Array arguments = {});
  bool answersAbsent() const;

 private:
  mutable std::mutex mutex_;
  std::vector<FakeCall> calls_;  // guarded by mutex_
  bool absent_ = false;          // guarded by mutex_
};

}  // namespace vorn::testing

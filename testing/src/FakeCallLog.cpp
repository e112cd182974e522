#include "vorn/testing/FakeCallLog.hpp"

#include <utility>

namespace vorn::testing {

std::vector<FakeCall> FakeCallLog::calls() const {
  std::lock_guard lock(mutex_);
  return calls_;
}

std::vector<std::string> FakeCallLog::operations() const {
  std::vector<std::string> names;
  for (const FakeCall& call : calls())
    names.push_back(call.operation);
  return names;
}

void FakeCallLog::setAnswersAbsent(bool absent) {
  std::lock_guard lock(mutex_);
  absent_ = absent;
}

void FakeCallLog::record(std::string operation, Array arguments) {
  std::lock_guard lock(mutex_);
  calls_.push_back({std::move(operation), std::move(arguments)});
}

bool FakeCallLog::answersAbsent() const {
  std::lock_guard lock(mutex_);
  return absent_;
}

}  // namespace vorn::testing

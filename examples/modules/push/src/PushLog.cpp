#include "PushLog.hpp"

#include <algorithm>

namespace push {

PushLog::PushLog() : logger_(vorn::ModuleName::push, {}) {}

void PushLog::debug(std::string_view message, vorn::LoggerCategory category) {
  logger_.d(category, message);
}

void PushLog::warning(std::string_view message, vorn::LoggerCategory category) {
  logger_.w(category, message);
}

void PushLog::redact(const std::string& value) {
  if (value.empty())
    return;
  std::lock_guard lock(mutex_);
  std::vector<std::string> values = logger_.redactedValues();
  if (std::find(values.begin(), values.end(), value) != values.end())
    return;
  values.push_back(value);
  logger_.setRedactedValues(std::move(values));
}

}  // namespace push

// PushLog: the push module's logger and the secrets it keeps out of every line.
//
// Lines go through a ModuleLogger bound to the push module, so the shared logger's level,
// filters and sink apply. redact() adds a value to the module logger's redacted values; a
// value is kept for the life of the module, so a replaced token stays hidden too.
//
// Thread safety: every member may be called from any thread.
#pragma once

#include <mutex>
#include <string>
#include <string_view>

#include "vorn/logging/ModuleLogger.hpp"

namespace push {

class PushLog {
 public:
  PushLog();

  void debug(std::string_view message,
             vorn::LoggerCategory category = vorn::LoggerCategory::module);
  void warning(std::string_view message,
               vorn::LoggerCategory category = vorn::LoggerCategory::module);
  /// Hides `value` from every later line; empty values are ignored.
  void redact(const std::string& value);

 private:
  vorn::ModuleLogger logger_;
  std::mutex mutex_;  // serialises the read-modify-write of the redacted values
};

}  // namespace push

// The logger a feature module writes through.
//
// Bound to one module and carrying that module's own sensitive values: each line is scrubbed
// of them, then handed to the shared logger with the module as subsystem, where the shared
// level, filters, redaction and sink apply as to the core's own lines. Redaction therefore
// runs twice, with the module's list first.
//
// Thread safety: every member may be called from any thread; replacing the list while other
// threads log is safe, and each line uses the list as it was when the line was redacted.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/logging/VORNSdkLogger.hpp"

namespace vorn {

class VORN_API ModuleLogger {
 public:
  ModuleLogger(ModuleName module, std::vector<std::string> redactedValues);

  ModuleName module() const noexcept { return module_; }
  VORNSdkLogger& logger() const noexcept { return logger_; }

  std::vector<std::string> redactedValues() const;
  void setRedactedValues(std::vector<std::string> values);
  /// The same as setRedactedValues.
  void set(std::vector<std::string> redactedValues);

  /// Whether a line of this level and category would be written now; lets a module skip
  /// building an expensive message.
  static bool enabled(LogLevel level, LoggerCategory category) noexcept {
    return VORNSdkLogger::enabled(level, category);
  }

  void d(LoggerCategory category, std::string_view message);
  void w(LoggerCategory category, std::string_view message);
  void e(LoggerCategory category, std::string_view message);
  void f(LoggerCategory category, std::string_view message);
  void debugWithCategory(LoggerCategory category, std::string_view message);
  void warningWithCategory(LoggerCategory category, std::string_view message);
  void errorWithCategory(LoggerCategory category, std::string_view message);
  void faultWithCategory(LoggerCategory category, std::string_view message);

 private:
  void write(LogLevel level, LoggerCategory category, std::string_view message);

  const ModuleName module_;
  VORNSdkLogger& logger_;
  mutable std::mutex mutex_;
  std::shared_ptr<const std::vector<std::string>> redactedValues_;  // guarded by mutex_
};

}  // namespace vorn

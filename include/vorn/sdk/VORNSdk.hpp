// The SDK's entry class. All operations are class-level and may be called from any thread.
#pragma once

#include <memory>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/logging/LogLevel.hpp"
#include "vorn/logging/LogOutputter.hpp"
#include "vorn/logging/LoggerCategory.hpp"

namespace vorn {

class VORN_API VORNSdk {
 public:
  VORNSdk() = delete;

  /// Sets the shared logger's level and sink; the category filters stay as they are.
  static void setLogger(LogLevel logLevel, std::shared_ptr<LogOutputter> logOutputter);
  /// Sets level and sink, then appends the categories to the filters (they accumulate until
  /// clearLoggerFilters()).
  static void setLogger(LogLevel logLevel, std::shared_ptr<LogOutputter> logOutputter,
                        const std::vector<LoggerCategory>& filters);
  static void clearLoggerFilters();
  static LogLevel getLogLevel();
};

}  // namespace vorn

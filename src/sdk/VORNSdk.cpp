#include "vorn/sdk/VORNSdk.hpp"

#include "vorn/logging/VORNSdkLogger.hpp"

namespace vorn {

void VORNSdk::setLogger(LogLevel logLevel, std::shared_ptr<LogOutputter> logOutputter) {
  VORNSdkLogger::shared().setLogger(logLevel, std::move(logOutputter));
}

void VORNSdk::setLogger(LogLevel logLevel, std::shared_ptr<LogOutputter> logOutputter,
                        const std::vector<LoggerCategory>& filters) {
  VORNSdkLogger::shared().setLogger(logLevel, std::move(logOutputter), filters);
}

void VORNSdk::clearLoggerFilters() {
  VORNSdkLogger::shared().clearLoggerFilters();
}

LogLevel VORNSdk::getLogLevel() {
  return VORNSdkLogger::shared().getLogLevel();
}

}  // namespace vorn

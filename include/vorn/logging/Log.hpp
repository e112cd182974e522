// Call-site macros for the shared logger. Each tests VORNSdkLogger::enabled() before it
// evaluates its message expression, so a disabled line costs one relaxed load and never
// builds its string. Every log call of the library goes through them.
//
//   VORN_LOG_DEBUG(LoggerCategory::sdk, "Cancelling all operations in the " + name + " queue.");
#pragma once

#include "vorn/logging/VORNSdkLogger.hpp"

#define VORN_LOG_AS(subsystem, level, category, message)                                       \
  do {                                                                                         \
    if (::vorn::VORNSdkLogger::enabled((level), (category))) {                                 \
      ::vorn::VORNSdkLogger::shared().logMessage((level), (subsystem), (category), (message)); \
    }                                                                                          \
  } while (false)

#define VORN_LOG(level, category, message) \
  VORN_LOG_AS(::vorn::LoggerSubsystem::sdk(), level, category, message)
#define VORN_LOG_DEBUG(category, message) VORN_LOG(::vorn::LogLevel::debug, category, message)
#define VORN_LOG_WARNING(category, message) VORN_LOG(::vorn::LogLevel::warning, category, message)
#define VORN_LOG_ERROR(category, message) VORN_LOG(::vorn::LogLevel::error, category, message)
#define VORN_LOG_FAULT(category, message) VORN_LOG(::vorn::LogLevel::fault, category, message)

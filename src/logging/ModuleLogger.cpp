#include "vorn/logging/ModuleLogger.hpp"

#include "logging/Redaction.hpp"

namespace vorn {

ModuleLogger::ModuleLogger(ModuleName module, std::vector<std::string> redactedValues)
    : module_(module),
      logger_(VORNSdkLogger::shared()),
      redactedValues_(std::make_shared<const std::vector<std::string>>(std::move(redactedValues))) {
}

std::vector<std::string> ModuleLogger::redactedValues() const {
  std::lock_guard lock(mutex_);
  return *redactedValues_;
}

void ModuleLogger::setRedactedValues(std::vector<std::string> values) {
  auto replacement = std::make_shared<const std::vector<std::string>>(std::move(values));
  std::lock_guard lock(mutex_);
  redactedValues_ = std::move(replacement);
}

void ModuleLogger::set(std::vector<std::string> redactedValues) {
  setRedactedValues(std::move(redactedValues));
}

void ModuleLogger::write(LogLevel level, LoggerCategory category, std::string_view message) {
  // Redaction has no effect of its own, so a line the shared logger would drop is not
  // scrubbed at all.
  if (!enabled(level, category))
    return;
  std::shared_ptr<const std::vector<std::string>> redacted;
  {
    std::lock_guard lock(mutex_);
    redacted = redactedValues_;
  }
  logger_.logMessage(level, LoggerSubsystem::module(module_), category,
                     detail::redact(message, *redacted));
}

void ModuleLogger::d(LoggerCategory category, std::string_view message) {
  write(LogLevel::debug, category, message);
}
void ModuleLogger::w(LoggerCategory category, std::string_view message) {
  write(LogLevel::warning, category, message);
}
void ModuleLogger::e(LoggerCategory category, std::string_view message) {
  write(LogLevel::error, category, message);
}
void ModuleLogger::f(LoggerCategory category, std::string_view message) {
  write(LogLevel::fault, category, message);
}
void ModuleLogger::debugWithCategory(LoggerCategory category, std::string_view message) {
  d(category, message);
}
void ModuleLogger::warningWithCategory(LoggerCategory category, std::string_view message) {
  w(category, message);
}
void ModuleLogger::errorWithCategory(LoggerCategory category, std::string_view message) {
  e(category, message);
}
void ModuleLogger::faultWithCategory(LoggerCategory category, std::string_view message) {
  f(category, message);
}

}  // namespace vorn

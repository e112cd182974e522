#include "vorn/logging/VORNSdkLogger.hpp"

#include <algorithm>

#include "logging/Redaction.hpp"

namespace vorn {
namespace {
// Beyond every level: nothing passes while there is no sink.
constexpr std::uint32_t kClosedThreshold = 0xFF;

std::uint32_t categoryBit(LoggerCategory category) {
  return 1u << static_cast<int>(category);
}
}  // namespace

std::atomic<std::uint32_t> VORNSdkLogger::gate_{kClosedThreshold};

VORNSdkLogger& VORNSdkLogger::shared() noexcept {
  static VORNSdkLogger* const instance = new VORNSdkLogger();
  return *instance;
}

void VORNSdkLogger::logMessage(LogLevel level, LoggerSubsystem subsystem, LoggerCategory category,
                               std::string_view message) {
  if (!enabled(level, category))
    return;
  std::shared_ptr<LogOutputter> outputter;
  std::shared_ptr<const std::vector<std::string>> redacted;
  std::shared_ptr<const std::vector<std::string>> secrets;
  {
    std::lock_guard lock(mutex_);
    outputter = logOutputter_;
    redacted = redactedValues_;
    secrets = publishedSecrets();
  }
  if (!outputter)
    return;
  outputter->out(level, rawValue(subsystem), category,
                 detail::redactSecrets(detail::redact(message, *redacted), *secrets));
}

void VORNSdkLogger::debugWithCategory(LoggerCategory category, std::string_view message) {
  logMessage(LogLevel::debug, subsystem(), category, message);
}

void VORNSdkLogger::warningWithCategory(LoggerCategory category, std::string_view message) {
  logMessage(LogLevel::warning, subsystem(), category, message);
}

void VORNSdkLogger::errorWithCategory(LoggerCategory category, std::string_view message) {
  logMessage(LogLevel::error, subsystem(), category, message);
}

void VORNSdkLogger::faultWithCategory(LoggerCategory category, std::string_view message) {
  logMessage(LogLevel::fault, subsystem(), category, message);
}

LogLevel VORNSdkLogger::getLogLevel() const {
  std::lock_guard lock(mutex_);
  return logLevel_;
}

std::shared_ptr<LogOutputter> VORNSdkLogger::logOutputter() const {
  std::lock_guard lock(mutex_);
  return logOutputter_;
}

std::vector<std::string> VORNSdkLogger::filters() const {
  std::lock_guard lock(mutex_);
  return filters_;
}

std::vector<std::string> VORNSdkLogger::redactedValues() const {
  std::lock_guard lock(mutex_);
  return *redactedValues_;
}

void VORNSdkLogger::setLogger(LogLevel logLevel, std::shared_ptr<LogOutputter> logOutputter) {
  setLogger(logLevel, std::move(logOutputter), {});
}

void VORNSdkLogger::setLogger(LogLevel logLevel, std::shared_ptr<LogOutputter> logOutputter,
                              std::span<const LoggerCategory> filters) {
  std::lock_guard lock(mutex_);
  logLevel_ = logLevel;
  logOutputter_ = std::move(logOutputter);
  for (LoggerCategory category : filters) {
    filters_.emplace_back(rawValue(category));
    filterMask_ |= categoryBit(category);
  }
  publishGate();
}

void VORNSdkLogger::clearLoggerFilters() {
  std::lock_guard lock(mutex_);
  filters_.clear();
  filterMask_ = 0;
  publishGate();
}

void VORNSdkLogger::setRedactedValues(std::vector<std::string> values) {
  auto replacement = std::make_shared<const std::vector<std::string>>(std::move(values));
  std::lock_guard lock(mutex_);
  redactedValues_ = std::move(replacement);
}

// Keys come and go with every start-up, so a change costs a few map steps per secret; the
// sorted list the lines are scrubbed with is rebuilt only when a line needs it.
void VORNSdkLogger::setSecrets(const void* owner, std::vector<std::string> secrets) {
  std::erase(secrets, std::string());
  std::sort(secrets.begin(), secrets.end());
  secrets.erase(std::unique(secrets.begin(), secrets.end()), secrets.end());
  std::lock_guard lock(mutex_);
  const auto found = secretsByOwner_.find(owner);
  if (found == secretsByOwner_.end() ? secrets.empty() : found->second == secrets)
    return;
  if (found != secretsByOwner_.end()) {
    for (const std::string& secret : found->second)
      if (const auto use = secretUses_.find(secret); --use->second == 0)
        secretUses_.erase(use);
  }
  for (const std::string& secret : secrets)
    ++secretUses_[secret];
  if (secrets.empty())
    secretsByOwner_.erase(found);
  else
    secretsByOwner_.insert_or_assign(owner, std::move(secrets));
  secrets_.reset();
}

std::size_t VORNSdkLogger::secretCount() const {
  std::lock_guard lock(mutex_);
  return secretUses_.size();
}

std::shared_ptr<const std::vector<std::string>> VORNSdkLogger::publishedSecrets() {
  if (secrets_)
    return secrets_;
  std::vector<std::string> sorted;
  sorted.reserve(secretUses_.size());
  for (const auto& [secret, uses] : secretUses_)
    sorted.push_back(secret);
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const std::string& a, const std::string& b) { return a.size() > b.size(); });
  secrets_ = std::make_shared<const std::vector<std::string>>(std::move(sorted));
  return secrets_;
}

void VORNSdkLogger::publishGate() {
  const std::uint32_t threshold =
      logOutputter_ ? static_cast<std::uint32_t>(logLevel_) : kClosedThreshold;
  gate_.store(threshold | (filterMask_ << kFilterShift), std::memory_order_relaxed);
}

}  // namespace vorn

#include "vorn/testing/CaptureLogSink.hpp"

#include <algorithm>

#include "vorn/logging/VORNSdkLogger.hpp"

namespace vorn::testing {

std::shared_ptr<CaptureLogSink> CaptureLogSink::install(LogLevel level) {
  auto sink = std::make_shared<CaptureLogSink>();
  VORNSdkLogger::shared().clearLoggerFilters();
  VORNSdkLogger::shared().setLogger(level, sink);
  return sink;
}

void CaptureLogSink::out(LogLevel level, std::string_view subsystem, LoggerCategory category,
                         std::string_view message) {
  {
    std::lock_guard lock(mutex_);
    lines_.push_back({level, std::string(subsystem), category, std::string(message)});
  }
  changed_.notify_all();
}

std::vector<LogLine> CaptureLogSink::lines() const {
  std::lock_guard lock(mutex_);
  return lines_;
}

std::vector<std::string> CaptureLogSink::messages() const {
  std::lock_guard lock(mutex_);
  std::vector<std::string> out;
  out.reserve(lines_.size());
  for (const LogLine& line : lines_)
    out.push_back(line.message);
  return out;
}

std::size_t CaptureLogSink::count(std::string_view message) const {
  std::lock_guard lock(mutex_);
  return countLocked(message);
}

std::unique_ptr<LogLine> CaptureLogSink::find(std::string_view message) const {
  std::lock_guard lock(mutex_);
  for (const LogLine& line : lines_) {
    if (line.message == message)
      return std::make_unique<LogLine>(line);
  }
  return nullptr;
}

bool CaptureLogSink::waitFor(std::string_view message, std::size_t times,
                             std::chrono::milliseconds timeout) const {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, timeout, [&] { return countLocked(message) >= times; });
}

void CaptureLogSink::clear() {
  std::lock_guard lock(mutex_);
  lines_.clear();
}

std::size_t CaptureLogSink::countLocked(std::string_view message) const {
  return static_cast<std::size_t>(std::count_if(
      lines_.begin(), lines_.end(), [&](const LogLine& line) { return line.message == message; }));
}

}  // namespace vorn::testing

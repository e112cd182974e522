// A log sink that records every line it receives, for asserting exact log texts.
//
// Thread-safe: lines may arrive from any thread while a test reads or waits.
#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "vorn/logging/LogOutputter.hpp"

namespace vorn::testing {

struct LogLine {
  LogLevel level;
  std::string subsystem;
  LoggerCategory category;
  std::string message;
};

class CaptureLogSink : public LogOutputter {
 public:
  /// Creates a sink and makes it the shared logger's sink at `level`, with no filters.
  static std::shared_ptr<CaptureLogSink> install(LogLevel level = LogLevel::debug);

  void out(LogLevel level, std::string_view subsystem, LoggerCategory category,
           std::string_view message) override;

  std::vector<LogLine> lines() const;
  std::vector<std::string> messages() const;
  /// How many lines carry exactly this message.
  std::size_t count(std::string_view message) const;
  bool contains(std::string_view message) const { return count(message) > 0; }
  /// The first line with exactly this message; null when there is none.
  std::unique_ptr<LogLine> find(std::string_view message) const;

  /// Waits until at least `times` lines carry exactly this message; false on time-out.
  bool waitFor(std::string_view message, std::size_t times = 1,
               std::chrono::milliseconds timeout = std::chrono::seconds(10)) const;

  void clear();

 private:
  std::size_t countLocked(std::string_view message) const;

  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  std::vector<LogLine> lines_;  // guarded by mutex_
};

}  // namespace vorn::testing

// Log lines that a store formats while it holds its lock and writes once it has let go.
//
// An app's log sink may call back into the store that logged, to read a setting say. A line
// written under the store's lock would deadlock that call, or run it in the middle of the
// call that logged. So the stores keep their lines in a DeferredLog guarded by their lock,
// and every store call declares a LogWhenUnlocked before its lock guard: destroyed after the
// guard, it writes the lines once the lock is free.
//
// Not thread-safe: the owner's mutex guards a DeferredLog.
#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "vorn/logging/VORNSdkLogger.hpp"

namespace vorn::platform {

class DeferredLog {
 public:
  /// Keeps the line `format()` at `level` in the database category. The text is built only
  /// when such a line would reach the sink.
  template <class Format>
  void add(LogLevel level, Format&& format) {
    if (VORNSdkLogger::enabled(level, LoggerCategory::database))
      lines_.push_back(Line{level, std::forward<Format>(format)()});
  }

  /// Writes the kept lines in order and forgets them.
  void write();

  void swap(DeferredLog& other) noexcept { lines_.swap(other.lines_); }

 private:
  struct Line {
    LogLevel level;
    std::string message;
  };
  std::vector<Line> lines_;
};

/// Writes the lines of `log` when the scope ends, after taking them under `mutex`.
template <class Mutex>
class LogWhenUnlocked {
 public:
  LogWhenUnlocked(Mutex& mutex, DeferredLog& log) : mutex_(mutex), log_(log) {}
  ~LogWhenUnlocked() {
    DeferredLog lines;
    {
      std::lock_guard lock(mutex_);
      lines.swap(log_);
    }
    lines.write();
  }
  LogWhenUnlocked(const LogWhenUnlocked&) = delete;
  LogWhenUnlocked& operator=(const LogWhenUnlocked&) = delete;

 private:
  Mutex& mutex_;
  DeferredLog& log_;
};

}  // namespace vorn::platform

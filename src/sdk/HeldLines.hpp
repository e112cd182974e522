// Log lines written while a lock is held and handed to the logger once it is released, so
// that the app's log sink never runs under one of the SDK's locks.
//
// Not thread-safe: one owner fills it and writes it.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "vorn/logging/Log.hpp"

namespace vorn::detail {

class HeldLines {
 public:
  /// Keeps the line `format()` builds; it is built only when such a line would be written.
  template <class Format>
  void add(LogLevel level, LoggerCategory category, Format&& format) {
    if (VORNSdkLogger::enabled(level, category))
      lines_.push_back({level, category, std::forward<Format>(format)()});
  }

  /// Writes the kept lines in order.
  void write() const;

 private:
  struct Line {
    LogLevel level;
    LoggerCategory category;
    std::string message;
  };
  std::vector<Line> lines_;
};

}  // namespace vorn::detail

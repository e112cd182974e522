// The demo's log sink: keeps every line so steps can wait for one, and prints the ones that
// tell the story (network refusals and token work, behaviours, the modules' own lines).
#pragma once

#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "vorn/logging/LogOutputter.hpp"

namespace demo {

class DemoSink final : public vorn::LogOutputter {
 public:
  /// `tap`, when not null, receives every line as well.
  explicit DemoSink(std::shared_ptr<vorn::LogOutputter> tap = nullptr) : tap_(std::move(tap)) {}

  void out(vorn::LogLevel level, std::string_view subsystem, vorn::LoggerCategory category,
           std::string_view message) override {
    std::lock_guard lock(mutex_);
    lines_.emplace_back(message);
    if (worthPrinting(subsystem, category, message))
      std::printf("    log [%.*s/%.*s] %.*s\n", static_cast<int>(subsystem.size()),
                  subsystem.data(), static_cast<int>(vorn::rawValue(category).size()),
                  vorn::rawValue(category).data(), static_cast<int>(message.size()),
                  message.data());
    if (tap_)
      tap_->out(level, subsystem, category, message);
  }

  /// True when a line containing `text` was logged.
  bool saw(const std::string& text) const {
    std::lock_guard lock(mutex_);
    for (const std::string& line : lines_)
      if (line.find(text) != std::string::npos)
        return true;
    return false;
  }

 private:
  static bool worthPrinting(std::string_view subsystem, vorn::LoggerCategory category,
                            std::string_view message) {
    if (category == vorn::LoggerCategory::behavior)
      return true;
    if (category == vorn::LoggerCategory::network)
      return message.find("process") == std::string_view::npos;  // not the start/end pairs
    return subsystem != "VORNSdk";                               // the modules' own lines
  }

  const std::shared_ptr<vorn::LogOutputter> tap_;
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;  // guarded by mutex_
};

}  // namespace demo

#include "vorn/logging/LogOutputter.hpp"

#include <unistd.h>

#include <string>

namespace vorn {

LogOutputter::~LogOutputter() = default;

void LogOutputter::out(LogLevel level, std::string_view subsystem, LoggerCategory category,
                       std::string_view message) {
  const auto type = getOSLogType(level);
  if (!type)
    return;
  std::string line;
  line.reserve(subsystem.size() + message.size() + 32);
  line.append(subsystem).append("/").append(rawValue(category)).append(" ");
  line.append(rawValue(*type)).append(": ").append(message).append("\n");
  std::size_t written = 0;
  while (written < line.size()) {
    const ssize_t n = ::write(STDERR_FILENO, line.data() + written, line.size() - written);
    if (n <= 0)
      return;  // A closed or full stderr must not stop the app: drop the line.
    written += static_cast<std::size_t>(n);
  }
}

}  // namespace vorn

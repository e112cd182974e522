#include "vorn/logging/LogOutputter.hpp"

#include <string>

#include "base/SystemHooks.hpp"

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
  detail::writeStandardError(line);
}

}  // namespace vorn

#include "platform/sqlite/DeferredLog.hpp"

#include "vorn/logging/Log.hpp"

namespace vorn::platform {

void DeferredLog::write() {
  for (const Line& line : lines_)
    VORN_LOG(line.level, LoggerCategory::database, line.message);
  lines_.clear();
}

}  // namespace vorn::platform

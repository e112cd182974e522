#include "facades/Forwarding.hpp"

#include <string>

#include "vorn/logging/Log.hpp"

namespace vorn::detail {

void logNotInitialized(ModuleName name, std::string_view advice, ModuleStatus status) {
  VORN_LOG_DEBUG(LoggerCategory::interface, "Module " + std::string(rawValue(name)) +
                                                " is not initialized. " + std::string(advice) +
                                                "Current status: " + std::string(rawValue(status)));
}

void logNotReady(std::string_view line) {
  VORN_LOG_DEBUG(LoggerCategory::interface, line);
}

}  // namespace vorn::detail

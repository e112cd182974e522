#include "identity/RawModules.hpp"

#include "vorn/logging/Log.hpp"

namespace vorn::detail {

void logNoValidModules() {
  VORN_LOG_WARNING(LoggerCategory::identity,
                   "Setting the `profile id` failed due to invalid modules.");
}

std::optional<std::vector<ModuleName>> modulesFromInts(const std::vector<int>& rawModules) {
  std::vector<ModuleName> modules;
  for (const int raw : rawModules) {
    if (const auto module = moduleNameFromInt(raw))
      modules.push_back(*module);
  }
  if (modules.empty()) {
    logNoValidModules();
    return std::nullopt;
  }
  return modules;
}

}  // namespace vorn::detail

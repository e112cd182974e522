#include "vorn/identity/ModuleNameFromInt.hpp"

#include <string>

#include "vorn/logging/Log.hpp"

namespace vorn {

std::optional<ModuleName> moduleNameFromInt(int raw) {
  const auto name = moduleNameFromRawInt(raw);
  if (!name) {
    VORN_LOG(LogLevel::warning, LoggerCategory::identity,
             "Invalid module rawValue: `" + std::to_string(raw) + "`.");
  }
  return name;
}

}  // namespace vorn

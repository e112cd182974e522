#include "sdk/ModuleLookup.hpp"

#include <string>

#include "vorn/core/ModuleRegistry.hpp"

namespace vorn::detail {
namespace {

std::string supportedVersions(const Compatibility& compatibility) {
  return ", supported versions: >= " + compatibility.min() + " <= " + compatibility.max();
}

// A version with as many parts as the range is simply outside it, which is worth an error.
// One with another number of parts ("1.0" against "1.0.0") is a packaging mismatch with its
// own, longer explanation, logged more quietly on purpose.
void explainIncompatibility(const ModuleFacade& facade, const std::string& version,
                            HeldLines& lines) {
  const Compatibility& compatibility = *facade.compatibility();
  const std::string module = description(facade.name());
  if (Compatibility::partCount(version) == compatibility.semanticsCount()) {
    lines.add(LogLevel::error, LoggerCategory::sdk, [&] {
      return "Failed to initialize module " + module +
             " due to module version incompatibility. Provided version: " + version +
             supportedVersions(compatibility);
    });
    return;
  }
  lines.add(LogLevel::debug, LoggerCategory::sdk, [&] {
    return "Failed to initialize " + module +
           " due to module version incompatibility caused by semantic versioning issue. "
           "Example: 1.0 vs 1.0.0. Semantic versioning must be aligned between the interface "
           "and module. Provided version: " +
           version + supportedVersions(compatibility);
  });
}

}  // namespace

std::optional<ModuleClass> findCompatibleClass(const ModuleFacade& facade, HeldLines& lines) {
  const std::string module = description(facade.name());
  std::optional<ModuleClass> moduleClass = ModuleRegistry::lookup(module);
  if (!moduleClass) {
    lines.add(LogLevel::error, LoggerCategory::sdk, [&] {
      return "Failed to find a matching file named `" + module +
             "`. You must import it to the project.";
    });
    return std::nullopt;
  }
  if (facade.compatibility()->isCompatible(moduleClass->moduleVersion))
    return moduleClass;
  explainIncompatibility(facade, moduleClass->moduleVersion, lines);
  return std::nullopt;
}

}  // namespace vorn::detail

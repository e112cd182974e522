#include "sdk/StateSnapshot.hpp"

#include <nlohmann/json.hpp>
#include <optional>

#include "sdk/SdkVersion.hpp"
#include "vorn/core/ModuleQueues.hpp"
#include "vorn/core/ModuleRegistry.hpp"
#include "vorn/facades/FacadeSources.hpp"
#include "vorn/identity/CoreIdentity.hpp"
#include "vorn/logging/Log.hpp"

namespace vorn::detail {
namespace {

std::string pendingOperations(ModuleName name) {
  const std::optional<std::size_t> count = ModuleQueues::pendingOperationCount(name);
  return count ? std::to_string(*count) : "undefined";
}

// Module code: whatever it throws stays out of the app's call.
std::optional<Dictionary> stateProperties(const ModuleFacade& facade) {
  const std::shared_ptr<VORNModule> module = facade.module();
  if (!module)
    return std::nullopt;
  try {
    return module->stateProperties();
  } catch (...) {
    return std::nullopt;
  }
}

void addOperationalDetails(const ModuleFacade& facade, nlohmann::json& entry) {
  const std::optional<ModuleClass> moduleClass = ModuleRegistry::lookup(description(facade.name()));
  if (!moduleClass)
    return;
  entry["version"] = moduleClass->moduleVersion;
  if (std::optional<Dictionary> properties = stateProperties(facade))
    entry["properties"] = toJson(*properties);
}

nlohmann::json moduleState(const ModuleFacade& facade) {
  const ModuleStatus status = facade.getStatus();
  const Compatibility& range = *facade.compatibility();
  nlohmann::json entry = {
      {"name", rawValue(facade.name())},
      {"status", rawValue(status)},
      {"compatibility", range.min() + " - " + range.max()},
      {"pendingOperations", pendingOperations(facade.name())},
      {"version", "unavailable"},
  };
  if (status == ModuleStatus::operational) {
    addOperationalDetails(facade, entry);
    return entry;
  }
  VORN_LOG_DEBUG(LoggerCategory::sdk, "Module `" + description(facade.name()) +
                                          "` not operational. Returning partial state output");
  return entry;
}

}  // namespace

std::string stateJson() {
  nlohmann::json state = {{"version", sdkVersion()}};
  if (std::optional<std::string> registrationId = CoreIdentity::shared().registrationId())
    state["registrationId"] = std::move(*registrationId);
  nlohmann::json& modules = state["modules"];
  for (const ModuleName name : kAllModuleNames)
    modules[std::string(rawValue(name))] = moduleState(facade(name));
  // Text that is not UTF-8 (from a module's properties) is replaced rather than thrown on.
  return state.dump(2, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string readableState(std::string_view json) {
  std::string text;
  text.reserve(json.size());
  for (std::size_t i = 0; i < json.size(); ++i) {
    if (json[i] != '\\') {
      text += json[i];
    } else if (i + 1 < json.size() && json[i + 1] == 'n') {
      text += '\n';
      ++i;
    }
  }
  return text;
}

}  // namespace vorn::detail

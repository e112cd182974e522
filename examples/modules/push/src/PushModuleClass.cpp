// The module class the core finds by name, and the parser of its settings written as JSON;
// both registered when this library is loaded.
#include <memory>
#include <string>

#include <nlohmann/json.hpp>

#include "PushModule.hpp"
#include "vorn/core/ModuleRegistrar.hpp"
#include "vorn/core/ModuleSettingsParsers.hpp"

namespace push {
namespace {

std::shared_ptr<vorn::VORNModule> initModule(
    const std::shared_ptr<const vorn::ModuleConfig>& config,
    const std::shared_ptr<vorn::VORNSdkComponents>& components) {
  const auto pushConfig = std::dynamic_pointer_cast<const PushModuleConfig>(config);
  if (!pushConfig || !components)
    return nullptr;
  return PushModule::start(*pushConfig, components);
}

// {"appId": "...", "endpoint": "...", "registrationRateLimitSeconds": 0}: the keys are the
// stored properties' labels, every one but "appId" optional. An unknown key is refused rather
// than ignored, so that a misspelt setting does not silently keep its default.
vorn::ModuleSettingsParseResult parseSettings(const nlohmann::json& json) {
  if (!json.is_object())
    return {nullptr, "the settings must be a JSON object"};
  for (const auto& [key, value] : json.items()) {
    if (key != "appId" && key != "endpoint" && key != "registrationRateLimitSeconds")
      return {nullptr, "unknown key \"" + key + "\""};
  }
  const auto appId = json.find("appId");
  if (appId == json.end() || !appId->is_string())
    return {nullptr, "\"appId\" must be a string"};
  // Wrong types of the other keys throw from value(); the core reports the message.
  PushSettings settings;
  settings.endpoint = json.value("endpoint", settings.endpoint);
  settings.registrationRateLimitSeconds =
      json.value("registrationRateLimitSeconds", settings.registrationRateLimitSeconds);
  return {std::make_shared<PushModuleConfig>(appId->get<std::string>(), settings), {}};
}

const vorn::ModuleSettingsParserRegistrar settingsParser{vorn::ModuleName::push, &parseSettings};

}  // namespace
}  // namespace push

VORN_REGISTER_MODULE(push, {std::string(push::kModuleDescription),
                            std::string(push::kModuleVersion), &push::initModule})

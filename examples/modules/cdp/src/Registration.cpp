// Registers the module class, and the parser of its settings written as JSON, when the
// library is loaded.
#include <memory>
#include <string>

#include <nlohmann/json.hpp>

#include "CdpModule.hpp"
#include "vorn/core/ModuleRegistrar.hpp"
#include "vorn/core/ModuleSettingsParsers.hpp"

namespace cdp {
namespace {

// {"appId": "...", "endpoint": "...", "batchSize": 20, "flushIntervalSeconds": 10,
//  "rateLimitSeconds": 1, "dataDirectory": "...", "syncWrites": false}: the keys are the
// stored properties' labels, every one but "appId" optional. An unknown key is refused rather
// than ignored, so that a misspelt setting does not silently keep its default.
vorn::ModuleSettingsParseResult parseSettings(const nlohmann::json& json) {
  if (!json.is_object())
    return {nullptr, "the settings must be a JSON object"};
  for (const auto& [key, value] : json.items()) {
    if (key != "appId" && key != "endpoint" && key != "batchSize" &&
        key != "flushIntervalSeconds" && key != "rateLimitSeconds" && key != "dataDirectory" &&
        key != "syncWrites")
      return {nullptr, "unknown key \"" + key + "\""};
  }
  const auto appId = json.find("appId");
  if (appId == json.end() || !appId->is_string())
    return {nullptr, "\"appId\" must be a string"};
  const auto batchSize = json.find("batchSize");
  if (batchSize != json.end() && (!batchSize->is_number_unsigned() || *batchSize == 0))
    return {nullptr, "\"batchSize\" must be a positive integer"};
  // Wrong types of the other keys throw from value(); the core reports the message.
  CdpSettings settings;
  settings.endpoint = json.value("endpoint", settings.endpoint);
  settings.batchSize = json.value("batchSize", settings.batchSize);
  settings.flushIntervalSeconds = json.value("flushIntervalSeconds", settings.flushIntervalSeconds);
  settings.rateLimitSeconds = json.value("rateLimitSeconds", settings.rateLimitSeconds);
  settings.dataDirectory = json.value("dataDirectory", std::string());
  settings.syncWrites = json.value("syncWrites", settings.syncWrites);
  return {std::make_shared<CdpModuleConfig>(appId->get<std::string>(), settings), {}};
}

const vorn::ModuleSettingsParserRegistrar settingsParser{vorn::ModuleName::cdp, &parseSettings};

}  // namespace
}  // namespace cdp

VORN_REGISTER_MODULE(CdpModule, {std::string(cdp::kModuleDescription),
                                 std::string(cdp::kModuleVersion), &cdp::CdpModule::initModule})

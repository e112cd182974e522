#include "vorn/core/ConfigBuilder.hpp"

#include <string>
#include <vector>

#include "core/OutcomeCallback.hpp"
#include "vorn/logging/Log.hpp"

namespace vorn {

ConfigBuilder& ConfigBuilder::setCdp(std::shared_ptr<const ModuleConfig> config,
                                     CompletionCallback onCompletion) {
  return set(ModuleName::cdp, std::move(config), std::move(onCompletion));
}

ConfigBuilder& ConfigBuilder::setPush(std::shared_ptr<const ModuleConfig> config,
                                      CompletionCallback onCompletion) {
  return set(ModuleName::push, std::move(config), std::move(onCompletion));
}

Config ConfigBuilder::build() const {
  std::vector<std::shared_ptr<const ModuleConfig>> configs;
  configs.reserve(moduleConfigs_.size());
  for (const auto& [name, config] : moduleConfigs_)
    configs.push_back(config);
  return Config(std::move(configs), onCompletion_);
}

ConfigBuilder& ConfigBuilder::set(ModuleName name, std::shared_ptr<const ModuleConfig> config,
                                  CompletionCallback onCompletion) {
  if (!config) {
    VORN_LOG_WARNING(LoggerCategory::sdk, "Ignoring a null configuration for the `" +
                                              std::string(rawValue(name)) + "` module.");
    return *this;
  }
  moduleConfigs_[name] = std::move(config);
  auto& callbacks = onCompletion_[name];
  callbacks.clear();
  callbacks.push_back(detail::internalOutcomeCallback(name));
  if (onCompletion)
    callbacks.push_back(std::move(onCompletion));
  return *this;
}

}  // namespace vorn

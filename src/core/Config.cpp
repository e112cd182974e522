#include "vorn/core/Config.hpp"

#include <algorithm>

namespace vorn {
namespace {

// The first configuration of `list` for the module `name` is the only one compared, even
// when a later one would be equal.
const ModuleConfig* firstNamed(const std::vector<std::shared_ptr<const ModuleConfig>>& list,
                               ModuleName name) {
  const auto found = std::find_if(list.begin(), list.end(),
                                  [name](const auto& config) { return config->name() == name; });
  return found == list.end() ? nullptr : found->get();
}

}  // namespace

Config::Config(std::vector<std::shared_ptr<const ModuleConfig>> moduleConfigs,
               CompletionCallbacks onCompletion)
    : moduleConfigs_(std::move(moduleConfigs)), onCompletion_(std::move(onCompletion)) {
  std::erase(moduleConfigs_, nullptr);
}

std::vector<CompletionCallback> Config::completions(ModuleName name) const {
  const auto found = onCompletion_.find(name);
  return found == onCompletion_.end() ? std::vector<CompletionCallback>{} : found->second;
}

bool Config::operator==(const Config& other) const {
  if (moduleConfigs_.size() != other.moduleConfigs_.size() ||
      onCompletion_.size() != other.onCompletion_.size())
    return false;
  return std::all_of(moduleConfigs_.begin(), moduleConfigs_.end(), [&](const auto& config) {
    const ModuleConfig* partner = firstNamed(other.moduleConfigs_, config->name());
    return partner != nullptr && moduleConfigsEqual(*config, *partner);
  });
}

}  // namespace vorn

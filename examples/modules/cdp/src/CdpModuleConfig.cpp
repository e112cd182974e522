#include <utility>

#include "cdp/CdpModule.hpp"
#include "vorn/platform/Platform.hpp"

namespace cdp {

CdpModuleConfig::CdpModuleConfig(std::string appId, CdpSettings settings)
    : appId_(std::move(appId)), settings_(std::move(settings)) {}

vorn::ModuleName CdpModuleConfig::name() const {
  return vorn::ModuleName::cdp;
}

std::string CdpModuleConfig::appId() const {
  return appId_;
}

std::vector<vorn::ModuleConfig::Property> CdpModuleConfig::storedProperties() const {
  return {
      {"appId", vorn::Value(appId_)},
      {"endpoint", vorn::Value(settings_.endpoint)},
      {"batchSize", vorn::Value(settings_.batchSize)},
      {"flushIntervalSeconds", vorn::Value(settings_.flushIntervalSeconds)},
      {"rateLimitSeconds", vorn::Value(settings_.rateLimitSeconds)},
      {"dataDirectory", vorn::Value(settings_.dataDirectory.string())},
      {"syncWrites", vorn::Value(settings_.syncWrites)},
  };
}

std::filesystem::path CdpModuleConfig::dataDirectory() const {
  if (settings_.dataDirectory.empty())
    return vorn::Platform::defaultDataDirectory();
  return settings_.dataDirectory;
}

}  // namespace cdp

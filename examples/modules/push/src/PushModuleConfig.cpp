#include "push/PushModule.hpp"

#include <utility>

namespace push {

PushModuleConfig::PushModuleConfig(std::string appId, PushSettings settings)
    : appId_(std::move(appId)), settings_(std::move(settings)) {}

vorn::ModuleName PushModuleConfig::name() const {
  return vorn::ModuleName::push;
}

std::string PushModuleConfig::appId() const {
  return appId_;
}

std::vector<PushModuleConfig::Property> PushModuleConfig::storedProperties() const {
  return {{"appId", appId_},
          {"endpoint", settings_.endpoint},
          {"registrationRateLimitSeconds", settings_.registrationRateLimitSeconds}};
}

}  // namespace push

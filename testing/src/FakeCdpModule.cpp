#include "vorn/testing/FakeCdpModule.hpp"

#include <string>
#include <utility>

namespace vorn::testing {

FakeModuleSettings FakeCdpModule::defaultSettings() {
  FakeModuleSettings settings;
  settings.version = "2.5.0";
  return settings;
}

void FakeCdpModule::registerClass(FakeModuleSettings settings) {
  Class::registerClass(ModuleName::cdp, std::move(settings));
}

std::shared_ptr<FakeCdpModule> FakeCdpModule::create(FakeModuleSettings settings) {
  return std::make_shared<FakeCdpModule>(ModuleName::cdp, std::move(settings), nullptr, nullptr);
}

ModuleIdentity FakeCdpModule::identity() {
  return {"fake-cdp-application", "fake-cdp-profile", "fake-cdp-installation", std::nullopt};
}

FakeCdpModule::FakeCdpModule(ModuleName name, FakeModuleSettings settings,
                             std::shared_ptr<const ModuleConfig> config,
                             std::shared_ptr<VORNSdkComponents> components)
    : FakeModule(name, std::move(settings), std::move(config), std::move(components)) {}

std::optional<ModuleIdentity> FakeCdpModule::getIdentity() {
  record("getIdentity");
  if (answersAbsent())
    return std::nullopt;
  return identity();
}

Consent FakeCdpModule::getConsent() {
  record("getConsent");
  std::lock_guard lock(consentMutex_);
  return consent_;
}

void FakeCdpModule::setConsent(Consent consent) {
  record("setConsent", {std::string(rawValue(consent))});
  std::lock_guard lock(consentMutex_);
  consent_ = consent;
}

void FakeCdpModule::setLocation(const std::optional<Coordinates>& coordinates,
                                std::int64_t expiresIn) {
  const Value where =
      coordinates ? Value(Array{coordinates->latitude, coordinates->longitude}) : Value();
  record("setLocation", {where, expiresIn});
}

}  // namespace vorn::testing

// FakeCdpModule: a customer-data module for tests - a FakeModule that also implements
// CdpInterface, so that the CDP facade forwards to it.
//
// It records every CdpInterface call (FakeCallLog). getConsent() answers the last consent
// set (`optIn` before any); getIdentity() answers identity() unless answers are absent.
// registerClass() registers it under "Cdp.CdpModule" with a version the CDP facade accepts.
//
// Thread safety: every member may be called from any thread.
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "vorn/facades/CdpInterface.hpp"
#include "vorn/testing/FakeCallLog.hpp"
#include "vorn/testing/FakeModule.hpp"
#include "vorn/testing/FakeModuleClass.hpp"

namespace vorn::testing {

class FakeCdpModule : public FakeModule, public CdpInterface, public FakeCallLog {
 public:
  using Class = FakeModuleClass<FakeCdpModule>;

  /// Version "2.5.0"; otherwise FakeModuleSettings' defaults.
  static FakeModuleSettings defaultSettings();
  static void registerClass(FakeModuleSettings settings = defaultSettings());
  /// A module to attach by hand, with no configuration or components.
  static std::shared_ptr<FakeCdpModule> create(FakeModuleSettings settings = defaultSettings());
  /// The identity getIdentity() answers while answers are present.
  static ModuleIdentity identity();

  FakeCdpModule(ModuleName name, FakeModuleSettings settings,
                std::shared_ptr<const ModuleConfig> config,
                std::shared_ptr<VORNSdkComponents> components);

  std::optional<ModuleIdentity> getIdentity() override;
  Consent getConsent() override;
  void setConsent(Consent consent) override;
  void setLocation(const std::optional<Coordinates>& coordinates, std::int64_t expiresIn) override;

 private:
  mutable std::mutex consentMutex_;
  Consent consent_ = Consent::optIn;  // guarded by consentMutex_
};

}  // namespace vorn::testing

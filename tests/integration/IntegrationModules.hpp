// A customer-data module for the integration tests: the fake module, plus the facade's
// CdpInterface, so that the CDP facade forwards to it and the identity JSON carries its
// identity. It remembers the last profile id the event bus brought it and, as a real module
// does, ends its own bus subscription when it is torn down.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "vorn/core/ModuleRegistry.hpp"
#include "vorn/events/IdentityEvent.hpp"
#include "vorn/facades/CdpInterface.hpp"
#include "vorn/messaging/EventBus.hpp"
#include "vorn/runtime/Durations.hpp"
#include "vorn/testing/FakeModule.hpp"

namespace vorn::integration {

class IdentifiedCdpModule final : public testing::FakeModule, public CdpInterface {
 public:
  using FakeModule::FakeModule;

  /// Registers the class under the cdp description; it starts as FakeModule's classes do.
  static void registerClass(testing::FakeModuleSettings settings = {.version = "2.0.2"}) {
    const std::string version = settings.version;
    ModuleRegistry::registerModule(
        {description(ModuleName::cdp), version,
         [settings = std::move(settings)](const auto& config, const auto& components) {
           return start(settings, config, components);
         }});
  }
  static std::vector<std::shared_ptr<IdentifiedCdpModule>> started() {
    std::lock_guard lock(startedMutex());
    return startedModules();
  }

  void tearDown() override {
    FakeModule::tearDown();
    EventBus::unsubscribe(shared_from_this());
  }

  void receive(std::shared_ptr<const Message> message) override {
    if (const auto event = std::dynamic_pointer_cast<const IdentityEvent>(message->fromEvent());
        event && event->profileId()) {
      std::lock_guard lock(mutex_);
      profileId_ = event->profileId();
    }
    FakeModule::receive(std::move(message));
  }

  std::optional<ModuleIdentity> getIdentity() override {
    std::lock_guard lock(mutex_);
    return ModuleIdentity{config()->appId(), profileId_, std::nullopt, std::nullopt};
  }
  Consent getConsent() override { return Consent::optIn; }
  void setConsent(Consent) override {}
  void setLocation(const std::optional<Coordinates>&, std::int64_t) override {}

 private:
  static std::mutex& startedMutex() {
    static auto* const mutex = new std::mutex();
    return *mutex;
  }
  static std::vector<std::shared_ptr<IdentifiedCdpModule>>& startedModules() {
    static auto* const modules = new std::vector<std::shared_ptr<IdentifiedCdpModule>>();
    return *modules;
  }

  static std::shared_ptr<VORNModule> start(const testing::FakeModuleSettings& settings,
                                           const std::shared_ptr<const ModuleConfig>& config,
                                           const std::shared_ptr<VORNSdkComponents>& components) {
    std::this_thread::sleep_for(durations::scaled(settings.initDelay));
    auto module =
        std::make_shared<IdentifiedCdpModule>(ModuleName::cdp, settings, config, components);
    std::lock_guard lock(startedMutex());
    startedModules().push_back(module);
    return module;
  }

  std::mutex mutex_;
  std::optional<std::string> profileId_;  // guarded by mutex_
};

}  // namespace vorn::integration

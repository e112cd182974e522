#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>

#include "vorn/core/ConfigBuilder.hpp"
#include "vorn/events/CustomEvent.hpp"
#include "vorn/sdk/VORNSdk.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FakeCdpModule.hpp"
#include "vorn/testing/FakeModuleConfig.hpp"
#include "vorn/testing/FakePushModule.hpp"
#include "vorn/testing/PlatformInstall.hpp"
#include "vorn/testing/TimeScale.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn::integration {
namespace {

using testing::FakeCdpModule;
using testing::FakeModule;
using testing::FakeModuleConfig;
using testing::FakePushModule;
using ::testing::UnorderedElementsAre;

// Configurations are compared by their stored properties only.
std::shared_ptr<const ModuleConfig> moduleConfig(ModuleName name, const std::string& appId) {
  return std::make_shared<FakeModuleConfig>(
      name, appId, std::vector<ModuleConfig::Property>{{"appId", Value(appId)}});
}

Config bothModules(const std::string& appId) {
  return ConfigBuilder()
      .setPush(moduleConfig(ModuleName::push, appId))
      .setCdp(moduleConfig(ModuleName::cdp, appId))
      .build();
}

std::vector<std::string> eventNames(const FakeModule& module) {
  std::vector<std::string> names;
  for (const auto& message : module.received())
    names.push_back(message->fromEvent()->name());
  return names;
}

bool received(const FakeModule& module, const std::string& name, std::size_t times = 1) {
  const auto names = eventNames(module);
  return static_cast<std::size_t>(std::count(names.begin(), names.end(), name)) == times;
}

bool bothAre(ModuleStatus status) {
  return VORNSdk::mp()->getStatus() == status && VORNSdk::cdp()->getStatus() == status;
}

testing::FakeModuleSettings slowStart(testing::FakeModuleSettings settings) {
  settings.initDelay = std::chrono::seconds(1);
  return settings;
}

class SdkStartUpTest : public ::testing::Test {
 protected:
  SdkStartUpTest() {
    // Slow enough starts that the app's first events meet modules still initializing.
    FakePushModule::registerClass(slowStart(FakePushModule::defaultSettings()));
    FakeCdpModule::registerClass(slowStart(FakeCdpModule::defaultSettings()));
  }

  bool startAndTrackAnEarlyEvent(const std::string& appId) {
    VORNSdk::initializeSdk(bothModules(appId));
    if (!testing::waitUntil([] { return bothAre(ModuleStatus::initializing); }))
      return false;
    VORNSdk::track(CustomEvent::create("early-" + appId));
    return testing::waitUntil([] {
      return bothAre(ModuleStatus::operational) &&
             VORNSdk::initializationState() == InitializationState::READY;
    });
  }

  Platform platform = testing::installEphemeralPlatform();
  testing::ScopedTimeScale scale{0.2};  // 5 s wait: 1 s; module starts: 200 ms
  std::shared_ptr<testing::CaptureLogSink> sink = testing::CaptureLogSink::install();
};

TEST_F(SdkStartUpTest, ModulesStartHearEventsAndIdentityAndAreReplacedAndTornDown) {
  ASSERT_TRUE(startAndTrackAnEarlyEvent("APP1"));
  const auto push = FakePushModule::Class::started().at(0);
  const auto cdp = FakeCdpModule::Class::started().at(0);
  VORNSdk::track(CustomEvent::create("later"));
  ASSERT_TRUE(push->waitForMessages(2));
  ASSERT_TRUE(cdp->waitForMessages(2));
  EXPECT_THAT(eventNames(*push), UnorderedElementsAre("early-APP1", "later"));
  EXPECT_THAT(eventNames(*cdp), UnorderedElementsAre("early-APP1", "later"));

  VORNSdk::identity()->setProfileId("user-1");
  VORNSdk::identity()->setProfileId("cdp-user", {ModuleName::cdp});
  ASSERT_TRUE(push->waitForMessages(3));
  ASSERT_TRUE(cdp->waitForMessages(4));
  EXPECT_EQ(VORNSdk::cdp()->getConsent(), Consent::optIn);
  EXPECT_TRUE(VORNSdk::mp()->addTag("vip"));

  const auto state = nlohmann::json::parse(VORNSdk::state());
  EXPECT_EQ(state["modules"]["push"]["status"], "operational");
  EXPECT_EQ(state["modules"]["push"]["version"], "8.1.0");
  EXPECT_EQ(state["modules"]["cdp"]["version"], "2.5.0");
  ASSERT_TRUE(state.contains("registrationId"));

  const auto identity = nlohmann::json::parse(VORNSdk::identity()->toJson());
  EXPECT_EQ(identity["platform"], platform.app.systemName);
  EXPECT_EQ(identity["registrationId"], state["registrationId"]);
  EXPECT_EQ(identity["moduleIdentities"]["cdp"]["profileId"], "fake-cdp-profile");
  EXPECT_TRUE(identity["moduleIdentities"].contains("push"));

  ASSERT_TRUE(startAndTrackAnEarlyEvent("APP2"));
  EXPECT_EQ(push->tearDownCount(), 1);
  EXPECT_EQ(cdp->tearDownCount(), 1);
  const auto newPush = FakePushModule::Class::started().at(1);
  const auto newCdp = FakeCdpModule::Class::started().at(1);
  EXPECT_EQ(newCdp->config()->appId(), "APP2");
  VORNSdk::track(CustomEvent::create("after"));
  ASSERT_TRUE(testing::waitUntil(
      [&] { return received(*newPush, "after") && received(*newCdp, "after"); }));
  EXPECT_TRUE(received(*push, "after", 0));
  EXPECT_TRUE(received(*cdp, "after", 0));

  VORNSdk::tearDownModule(ModuleName::push);
  VORNSdk::tearDownModule(ModuleName::cdp);
  EXPECT_TRUE(bothAre(ModuleStatus::inactive));
  EXPECT_EQ(newPush->tearDownCount(), 1);
  EXPECT_EQ(newCdp->tearDownCount(), 1);
  EXPECT_FALSE(nlohmann::json::parse(VORNSdk::identity()->toJson()).contains("moduleIdentities"));
  EXPECT_EQ(nlohmann::json::parse(VORNSdk::state())["modules"]["cdp"]["status"], "inactive");
}

}  // namespace
}  // namespace vorn::integration

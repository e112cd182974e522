#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>

#include "integration/IntegrationModules.hpp"
#include "vorn/core/ConfigBuilder.hpp"
#include "vorn/events/CustomEvent.hpp"
#include "vorn/sdk/VORNSdk.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FakeModuleConfig.hpp"
#include "vorn/testing/PlatformInstall.hpp"
#include "vorn/testing/TimeScale.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn::integration {
namespace {

// Configurations are compared by their stored properties only.
std::vector<ModuleConfig::Property> storedAppId(const std::string& appId) {
  return {{"appId", Value(appId)}};
}

using testing::FakeModule;
using testing::FakeModuleConfig;
using ::testing::UnorderedElementsAre;

Config bothModules(const std::string& appId) {
  return ConfigBuilder()
      .setPush(std::make_shared<FakeModuleConfig>(ModuleName::push, appId, storedAppId(appId)))
      .setCdp(std::make_shared<FakeModuleConfig>(ModuleName::cdp, appId, storedAppId(appId)))
      .build();
}

std::vector<std::string> eventNames(const FakeModule& module) {
  std::vector<std::string> names;
  for (const auto& message : module.received())
    names.push_back(message->fromEvent()->name());
  return names;
}

bool bothAre(ModuleStatus status) {
  return VORNSdk::mp()->getStatus() == status && VORNSdk::cdp()->getStatus() == status;
}

class SdkStartUpTest : public ::testing::Test {
 protected:
  SdkStartUpTest() {
    // Slow enough starts that the app's first events meet modules still initializing.
    FakeModule::registerClass(ModuleName::push,
                              {.version = "8.1.0", .initDelay = std::chrono::seconds(2)});
    IdentifiedCdpModule::registerClass({.version = "2.0.2", .initDelay = std::chrono::seconds(2)});
  }

  bool startAndTrackEarlyEvents(const std::string& appId) {
    VORNSdk::initializeSdk(bothModules(appId));
    if (!testing::waitUntil([] { return bothAre(ModuleStatus::initializing); }))
      return false;
    VORNSdk::track(CustomEvent::create("early-" + appId));
    return testing::waitUntil([] { return bothAre(ModuleStatus::operational); }) &&
           testing::waitUntil(
               [] { return VORNSdk::initializationState() == InitializationState::READY; });
  }

  Platform platform = testing::installEphemeralPlatform();
  testing::ScopedTimeScale scale{0.1};  // 5 s wait: 500 ms; module starts: 200 ms
  std::shared_ptr<testing::CaptureLogSink> sink = testing::CaptureLogSink::install();
};

TEST_F(SdkStartUpTest, ModulesStartHearEventsAndIdentityAndAreReplacedAndTornDown) {
  ASSERT_TRUE(startAndTrackEarlyEvents("APP1"));
  const auto push = FakeModule::started(ModuleName::push).at(0);
  const auto cdp = IdentifiedCdpModule::started().at(0);
  VORNSdk::track(CustomEvent::create("later"));
  ASSERT_TRUE(push->waitForMessages(2));
  ASSERT_TRUE(cdp->waitForMessages(2));
  EXPECT_THAT(eventNames(*push), UnorderedElementsAre("early-APP1", "later"));
  EXPECT_THAT(eventNames(*cdp), UnorderedElementsAre("early-APP1", "later"));

  VORNSdk::identity()->setProfileId("user-1");
  ASSERT_TRUE(push->waitForMessages(3));
  ASSERT_TRUE(cdp->waitForMessages(3));
  VORNSdk::identity()->setProfileId("cdp-user", {ModuleName::cdp});
  ASSERT_TRUE(cdp->waitForMessages(4));
  EXPECT_EQ(VORNSdk::cdp()->getConsent(), Consent::optIn);

  const auto state = nlohmann::json::parse(VORNSdk::state());
  EXPECT_EQ(state["modules"]["push"]["status"], "operational");
  EXPECT_EQ(state["modules"]["push"]["version"], "8.1.0");
  EXPECT_EQ(state["modules"]["cdp"]["version"], "2.0.2");
  ASSERT_TRUE(state.contains("registrationId"));

  const auto identity = nlohmann::json::parse(VORNSdk::identity()->toJson());
  EXPECT_EQ(identity["platform"], platform.app.systemName);
  EXPECT_EQ(identity["registrationId"], state["registrationId"]);
  EXPECT_EQ(identity["moduleIdentities"]["cdp"]["profileId"], "cdp-user");
  EXPECT_EQ(identity["moduleIdentities"]["cdp"]["applicationId"], "APP1");

  ASSERT_TRUE(startAndTrackEarlyEvents("APP2"));
  EXPECT_EQ(push->tearDownCount(), 1);
  EXPECT_EQ(cdp->tearDownCount(), 1);
  const auto newPush = FakeModule::started(ModuleName::push).at(1);
  const auto newCdp = IdentifiedCdpModule::started().at(1);
  // The torn-down cdp module left the bus, so its successor got the event buffered for it.
  ASSERT_TRUE(testing::waitUntil([&] {
    const auto names = eventNames(*newCdp);
    return std::find(names.begin(), names.end(), "early-APP2") != names.end();
  }));
  const std::size_t oldCdpMessages = cdp->received().size();
  VORNSdk::track(CustomEvent::create("after"));
  ASSERT_TRUE(testing::waitUntil([&] {
    const auto cdpNames = eventNames(*newCdp), pushNames = eventNames(*newPush);
    return std::count(cdpNames.begin(), cdpNames.end(), "after") == 1 &&
           std::count(pushNames.begin(), pushNames.end(), "after") == 1;
  }));
  EXPECT_EQ(cdp->received().size(), oldCdpMessages);

  VORNSdk::tearDownModule(ModuleName::push);
  VORNSdk::tearDownModule(ModuleName::cdp);
  EXPECT_TRUE(bothAre(ModuleStatus::inactive));
  EXPECT_EQ(newCdp->tearDownCount(), 1);
  EXPECT_FALSE(nlohmann::json::parse(VORNSdk::identity()->toJson()).contains("moduleIdentities"));
  EXPECT_EQ(nlohmann::json::parse(VORNSdk::state())["modules"]["cdp"]["status"], "inactive");
}

}  // namespace
}  // namespace vorn::integration

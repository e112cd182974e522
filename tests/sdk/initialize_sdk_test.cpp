#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "sdk/SdkTestSupport.hpp"
#include "vorn/messaging/EventBus.hpp"

namespace vorn::sdktest {
namespace {

using testing::FakeModule;

class InitializeSdkTest : public SdkTest {
 protected:
  Config bothModules(std::string pushAppId = "APP1") {
    return ConfigBuilder()
        .setPush(moduleConfig(ModuleName::push, std::move(pushAppId)), outcomes.callback("push"))
        .setCdp(moduleConfig(ModuleName::cdp), outcomes.callback("cdp"))
        .build();
  }
};

TEST_F(InitializeSdkTest, AnEmptyConfigurationIsReadyAtOnceAndStored) {
  ASSERT_TRUE(startReady(Config()));
  EXPECT_TRUE(testing::waitUntil([] { return VORNSdk::lastAppliedConfiguration().has_value(); }));
  EXPECT_EQ(VORNSdk::lastAppliedConfiguration()->moduleConfigs().size(), 0u);
  EXPECT_FALSE(sink->contains("Module initialization timeout exceeded"));
}

TEST_F(InitializeSdkTest, StartsBothModulesAndEveryCallbackHearsSuccessOnce) {
  registerBothModules();
  ASSERT_TRUE(startReady(bothModules()));
  ASSERT_TRUE(outcomes.waitFor(2));
  EXPECT_THAT(outcomes.heard(), ::testing::UnorderedElementsAre("push:success", "cdp:success"));
  EXPECT_EQ(VORNSdk::mp()->getStatus(), ModuleStatus::operational);
  EXPECT_EQ(VORNSdk::cdp()->getStatus(), ModuleStatus::operational);
  EXPECT_EQ(FakeModule::started(ModuleName::push).size(), 1u);
  EXPECT_TRUE(sink->contains(
      "Starting Module initialization: VORNSdkPushModule with version compatibility: 8.1.0 - "
      "8.9.9"));
  EXPECT_TRUE(sink->contains(
      "Starting Module initialization: Cdp.CdpModule with version compatibility: 2.0.2 - 2.9.9"));
  EXPECT_TRUE(sink->contains("Module `VORNSdkPushModule` initialized."));
  EXPECT_TRUE(sink->contains("Module `Cdp.CdpModule` initialized."));
  EXPECT_EQ(EventBus::subscriptions().size(), 2u);
  EXPECT_EQ(outcomes.heard().size(), 2u);
}

TEST_F(InitializeSdkTest, AnEqualConfigurationIsSkippedWhileReady) {
  registerBothModules();
  ASSERT_TRUE(startReady(bothModules()));
  ASSERT_TRUE(outcomes.waitFor(2));

  Outcomes repeat;
  VORNSdk::initializeSdk(ConfigBuilder()
                             .setPush(moduleConfig(ModuleName::push), repeat.callback("push"))
                             .setCdp(moduleConfig(ModuleName::cdp), repeat.callback("cdp"))
                             .build());
  ASSERT_TRUE(sink->waitFor(
      "Configurations are the same as the previous initialization. Skipping initialization."));
  // In configuration order, synchronously on the start-up queue: both heard before the line
  // could be followed by anything else.
  ASSERT_TRUE(repeat.waitFor(2));
  EXPECT_EQ(repeat.heard(), (std::vector<std::string>{"cdp:success", "push:success"}));
  EXPECT_EQ(outcomes.heard().size(), 2u);
  EXPECT_EQ(FakeModule::started(ModuleName::push).size(), 1u);
  EXPECT_EQ(FakeModule::started(ModuleName::push)[0]->tearDownCount(), 0);
  EXPECT_EQ(sink->count("SDK initializing with version: " + version), 1u);
}

TEST_F(InitializeSdkTest, AnEqualConfigurationAfterATimeOutStartsAfresh) {
  FakeModule::registerClass(ModuleName::cdp, {.version = kCdpVersion});
  ASSERT_TRUE(startTimingOut(bothModules()));  // no push class: push never reports
  EXPECT_FALSE(VORNSdk::lastAppliedConfiguration().has_value());
  EXPECT_EQ(VORNSdk::mp()->getStatus(), ModuleStatus::failed);

  FakeModule::registerClass(ModuleName::push, {.version = kPushVersion});
  ASSERT_TRUE(startReady(bothModules()));
  EXPECT_FALSE(sink->contains(
      "Configurations are the same as the previous initialization. Skipping initialization."));
  EXPECT_EQ(VORNSdk::mp()->getStatus(), ModuleStatus::operational);
  EXPECT_TRUE(testing::waitUntil([] { return VORNSdk::lastAppliedConfiguration().has_value(); }));
}

TEST_F(InitializeSdkTest, AChangedConfigurationTearsTheOldModulesDownFirst) {
  registerBothModules();
  ASSERT_TRUE(startReady(bothModules("APP1")));
  ASSERT_TRUE(outcomes.waitFor(2));
  const auto firstPush = FakeModule::started(ModuleName::push).at(0);
  const auto firstCdp = FakeModule::started(ModuleName::cdp).at(0);

  ASSERT_TRUE(startReady(bothModules("APP2")));
  ASSERT_TRUE(outcomes.waitFor(4));
  EXPECT_TRUE(sink->contains("Reinitializing sdk. Existing module instances will be replaced."));
  EXPECT_EQ(firstPush->tearDownCount(), 1);
  EXPECT_EQ(firstCdp->tearDownCount(), 1);
  ASSERT_EQ(FakeModule::started(ModuleName::push).size(), 2u);
  EXPECT_EQ(FakeModule::started(ModuleName::push)[1]->config()->appId(), "APP2");
  EXPECT_EQ(VORNSdk::mp()->module(), FakeModule::started(ModuleName::push)[1]);
  EXPECT_EQ(outcomes.heard().size(), 4u);  // once per module per start-up

  // The old modules were torn down before the new ones were started.
  const auto messages = sink->messages();
  const auto reinitializing =
      std::find(messages.begin(), messages.end(),
                "Reinitializing sdk. Existing module instances will be replaced.");
  EXPECT_NE(std::find(reinitializing, messages.end(), "SDK initializing with version: " + version),
            messages.end());
  EXPECT_TRUE(testing::waitUntil([] {
    const auto last = VORNSdk::lastAppliedConfiguration();
    return last && last->moduleConfigs().size() == 2 && last->moduleConfigs()[1]->appId() == "APP2";
  }));
}

TEST_F(InitializeSdkTest, TearDownModuleLeavesTheStateAndTheConfiguration) {
  registerBothModules();
  ASSERT_TRUE(startReady(bothModules()));
  ASSERT_TRUE(testing::waitUntil([] { return VORNSdk::lastAppliedConfiguration().has_value(); }));

  VORNSdk::tearDownModule(ModuleName::push);
  EXPECT_EQ(FakeModule::started(ModuleName::push)[0]->tearDownCount(), 1);
  EXPECT_EQ(VORNSdk::mp()->module(), nullptr);
  EXPECT_EQ(VORNSdk::mp()->getStatus(), ModuleStatus::inactive);
  EXPECT_EQ(VORNSdk::cdp()->getStatus(), ModuleStatus::operational);
  EXPECT_TRUE(sink->contains("Tearing down module: push. All deferred calls will be removed."));
  EXPECT_EQ(VORNSdk::initializationState(), InitializationState::READY);
  EXPECT_TRUE(VORNSdk::lastAppliedConfiguration().has_value());
}

}  // namespace
}  // namespace vorn::sdktest

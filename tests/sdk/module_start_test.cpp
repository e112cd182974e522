#include <gtest/gtest.h>

#include <chrono>

#include "sdk/SdkTestSupport.hpp"
#include "vorn/core/ModuleQueues.hpp"
#include "vorn/identity/CoreIdentity.hpp"
#include "vorn/messaging/EventBus.hpp"

namespace vorn::sdktest {
namespace {

using testing::FakeModule;

Config pushOnly(Outcomes& outcomes) {
  return ConfigBuilder().setPush(moduleConfig(ModuleName::push), outcomes.callback("push")).build();
}

class ModuleStartTest : public SdkTest {
 protected:
  void expectLine(const std::string& message, LogLevel level, LoggerCategory category) {
    const auto line = sink->find(message);
    ASSERT_NE(line, nullptr) << message;
    EXPECT_EQ(line->level, level);
    EXPECT_EQ(line->category, category);
  }
};

// The real five-second wait, once.
TEST(ModuleStartRealWait, AMissingClassFailsTheFacadeAndTheStartUpWaitsFiveSeconds) {
  testing::installEphemeralPlatform();
  const auto sink = testing::CaptureLogSink::install();
  FakeModule::registerClass(ModuleName::cdp, {.version = kCdpVersion});
  Outcomes outcomes;
  const auto started = std::chrono::steady_clock::now();
  VORNSdk::initializeSdk(ConfigBuilder()
                             .setCdp(moduleConfig(ModuleName::cdp), outcomes.callback("cdp"))
                             .setPush(moduleConfig(ModuleName::push), outcomes.callback("push"))
                             .build());

  ASSERT_TRUE(sink->waitFor("Module initialization timeout exceeded", 1, std::chrono::seconds(20)));
  EXPECT_GE(std::chrono::steady_clock::now() - started, std::chrono::seconds(5));
  const auto missing = sink->find(
      "Failed to find a matching file named `VORNSdkPushModule`. You must import it to the "
      "project.");
  ASSERT_NE(missing, nullptr);
  EXPECT_EQ(missing->level, LogLevel::error);
  EXPECT_EQ(missing->category, LoggerCategory::sdk);
  EXPECT_TRUE(testing::waitUntil(
      [] { return VORNSdk::initializationState() == InitializationState::NONE; }));
  EXPECT_EQ(VORNSdk::mp()->getStatus(), ModuleStatus::failed);
  // The module that did start is torn down with the rest.
  EXPECT_EQ(FakeModule::started(ModuleName::cdp).at(0)->tearDownCount(), 1);
  EXPECT_EQ(VORNSdk::cdp()->getStatus(), ModuleStatus::inactive);
  EXPECT_FALSE(VORNSdk::lastAppliedConfiguration().has_value());
  EXPECT_EQ(outcomes.heard(), std::vector<std::string>{"cdp:success"});
}

TEST_F(ModuleStartTest, ABusyFacadeIsSkippedAndTheStartUpTimesOut) {
  registerBothModules();
  VORNSdk::mp()->setStatus(ModuleStatus::disabled);
  ASSERT_TRUE(startTimingOut(pushOnly(outcomes)));
  expectLine(
      "Skipping initialization as the SDK is in a state other than inactive. Current Status: "
      "disabled",
      LogLevel::debug, LoggerCategory::interface);
  EXPECT_EQ(VORNSdk::mp()->getStatus(), ModuleStatus::disabled);
  EXPECT_TRUE(FakeModule::started(ModuleName::push).empty());
  EXPECT_TRUE(outcomes.heard().empty());
}

TEST_F(ModuleStartTest, AVersionOutsideTheRangeIsAnError) {
  registerBothModules({.version = "8.10.0"});
  ASSERT_TRUE(startTimingOut(pushOnly(outcomes)));
  expectLine(
      "Failed to initialize module VORNSdkPushModule due to module version incompatibility. "
      "Provided version: 8.10.0, supported versions: >= 8.1.0 <= 8.9.9",
      LogLevel::error, LoggerCategory::sdk);
  EXPECT_EQ(VORNSdk::mp()->getStatus(), ModuleStatus::failed);
  EXPECT_TRUE(FakeModule::started(ModuleName::push).empty());
  EXPECT_TRUE(outcomes.heard().empty());
}

TEST_F(ModuleStartTest, AVersionWithAnotherPartCountIsExplainedMoreQuietly) {
  registerBothModules({.version = kPushVersion}, {.version = "2.1"});
  ASSERT_TRUE(startTimingOut(
      ConfigBuilder().setCdp(moduleConfig(ModuleName::cdp), outcomes.callback("cdp")).build()));
  expectLine(
      "Failed to initialize Cdp.CdpModule due to module version incompatibility caused by "
      "semantic versioning issue. Example: 1.0 vs 1.0.0. Semantic versioning must be aligned "
      "between the interface and module. Provided version: 2.1, supported versions: >= 2.0.2 "
      "<= 2.9.9",
      LogLevel::debug, LoggerCategory::sdk);
  EXPECT_EQ(VORNSdk::cdp()->getStatus(), ModuleStatus::failed);
}

TEST_F(ModuleStartTest, AClassThatGivesNoModuleFailsTheFacade) {
  registerBothModules({.version = kPushVersion, .startsModule = false});
  ASSERT_TRUE(startTimingOut(pushOnly(outcomes)));
  expectLine("Module VORNSdkPushModule The operation timed out.", LogLevel::debug,
             LoggerCategory::sdk);
  EXPECT_TRUE(
      testing::waitUntil([] { return VORNSdk::mp()->getStatus() == ModuleStatus::failed; }));
  EXPECT_TRUE(outcomes.heard().empty());
}

TEST_F(ModuleStartTest, AnInitializerPastItsTimeOutFailsTheFacade) {
  // 20 s against the 15 s time-out, both scaled to a tenth.
  registerBothModules({.version = kPushVersion, .initDelay = std::chrono::seconds(20)});
  VORNSdk::initializeSdk(pushOnly(outcomes));
  ASSERT_TRUE(sink->waitFor("Module VORNSdkPushModule The operation timed out."));
  EXPECT_TRUE(
      testing::waitUntil([] { return VORNSdk::mp()->getStatus() == ModuleStatus::failed; }));
  // The module that arrives late is dropped, not attached.
  ASSERT_TRUE(testing::waitUntil([] { return FakeModule::started(ModuleName::push).size() == 1; }));
  EXPECT_EQ(VORNSdk::mp()->module(), nullptr);
  EXPECT_TRUE(outcomes.heard().empty());
}

TEST_F(ModuleStartTest, ACancelledInitializerIsOnlyLogged) {
  registerBothModules({.version = kPushVersion, .initDelay = std::chrono::seconds(10)});
  VORNSdk::initializeSdk(pushOnly(outcomes));
  // The registration id is reported just before the module's factory runs.
  ASSERT_TRUE(
      testing::waitUntil([] { return CoreIdentity::shared().registrationId().has_value(); }));
  ModuleQueues::removeQueue(ModuleName::push);

  ASSERT_TRUE(sink->waitFor(
      "Module `VORNSdkPushModule with version compatibility: 8.1.0 - 8.9.9` initialization got "
      "cancelled."));
  EXPECT_EQ(sink->find("Module `VORNSdkPushModule with version compatibility: 8.1.0 - 8.9.9` "
                       "initialization got cancelled.")
                ->level,
            LogLevel::warning);
  EXPECT_FALSE(sink->contains("Module VORNSdkPushModule The operation timed out."));
  ASSERT_TRUE(testing::waitUntil([] { return FakeModule::started(ModuleName::push).size() == 1; }));
  EXPECT_EQ(VORNSdk::mp()->module(), nullptr);
  EXPECT_TRUE(outcomes.heard().empty());
}

TEST_F(ModuleStartTest, AnOperationalModuleListensAndReleasesDeferredPushRequests) {
  registerBothModules();
  Outcomes requests;
  VORNSdk::requestPushSdk([&](std::shared_ptr<PushInterface>) {
    requests.callback("request")(OperationResult::success);
  });
  EXPECT_TRUE(requests.heard().empty());

  ASSERT_TRUE(startReady(pushOnly(outcomes)));
  ASSERT_TRUE(requests.waitFor(1));
  EXPECT_EQ(EventBus::subscriptions().count(ModuleName::push), 1u);
  EXPECT_EQ(VORNSdk::mp()->module(), FakeModule::started(ModuleName::push).at(0));
}

}  // namespace
}  // namespace vorn::sdktest

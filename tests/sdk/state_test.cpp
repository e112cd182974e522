#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "sdk/SdkTestSupport.hpp"
#include "vorn/identity/CoreIdentity.hpp"

namespace vorn::sdktest {
namespace {

using testing::FakeModule;

constexpr const char* kPartialCdp =
    "Module `Cdp.CdpModule` not operational. Returning partial state output";
constexpr const char* kPartialPush =
    "Module `VORNSdkPushModule` not operational. Returning partial state output";

class StateTest : public SdkTest {};

TEST_F(StateTest, BeforeAnyStartUpBothModulesArePartial) {
  const auto state = nlohmann::json::parse(VORNSdk::state());
  for (const auto& [name, range] : {std::pair{"cdp", "2.0.2 - 2.9.9"}, {"push", "8.1.0 - 8.9.9"}}) {
    const auto& module = state["modules"][name];
    EXPECT_EQ(module["name"], name);
    EXPECT_EQ(module["status"], "inactive");
    EXPECT_EQ(module["version"], "unavailable");
    EXPECT_EQ(module["compatibility"], range);
    EXPECT_EQ(module["pendingOperations"], "undefined");
    EXPECT_FALSE(module.contains("properties"));
  }
  EXPECT_EQ(state["version"], version);
  EXPECT_FALSE(state.contains("registrationId"));
  EXPECT_EQ(sink->messages(), (std::vector<std::string>{kPartialCdp, kPartialPush}));
}

TEST_F(StateTest, IsPrettyPrintedWithSortedKeys) {
  const std::string state = VORNSdk::state();
  EXPECT_EQ(state, nlohmann::json::parse(state).dump(2));
  EXPECT_LT(state.find("\"modules\""), state.find("\"version\": \"" + version));
}

TEST_F(StateTest, AnOperationalModuleAddsItsVersionAndPropertiesWithoutBackslashes) {
  registerBothModules(
      {.version = "8.2.0",
       .stateProperties = {
           {"greeting", "say \"hi\""}, {"lines", "one\ntwo"}, {"path", "C:\\tmp"}, {"count", 3}}});
  ASSERT_TRUE(startReady(ConfigBuilder().setPush(moduleConfig(ModuleName::push)).build()));
  sink->clear();

  const std::string state = VORNSdk::state();
  EXPECT_NE(state.find("\"greeting\": \"say \"hi\"\""), std::string::npos) << state;
  EXPECT_NE(state.find("\"lines\": \"one\ntwo\""), std::string::npos) << state;
  EXPECT_NE(state.find("\"path\": \"C:tmp\""), std::string::npos) << state;
  EXPECT_EQ(state.find('\\'), std::string::npos);
  EXPECT_NE(state.find("\"count\": 3"), std::string::npos);
  EXPECT_NE(state.find("\"status\": \"operational\""), std::string::npos);
  EXPECT_NE(state.find("\"version\": \"8.2.0\""), std::string::npos);
  EXPECT_NE(state.find("\"pendingOperations\": \"0\""), std::string::npos);
  EXPECT_EQ(sink->messages(), std::vector<std::string>{kPartialCdp});

  const auto registrationId = CoreIdentity::shared().registrationId();
  ASSERT_TRUE(registrationId.has_value());
  EXPECT_EQ(*registrationId, FakeModule::started(ModuleName::push)
                                 .at(0)
                                 ->components()
                                 ->storageManager()
                                 ->getRegistrationId());
  EXPECT_NE(state.find("\"registrationId\": \"" + *registrationId + "\""), std::string::npos);
}

TEST_F(StateTest, TheVersionComesFromTheBuild) {
  EXPECT_EQ(VORNSdk::sdkVersion(), AppInfo::fromProcess().sdkVersion);
  EXPECT_THAT(VORNSdk::sdkVersion(), ::testing::MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+"));
  VORNSdk::setSdkVersion("9.9.9");
  EXPECT_EQ(nlohmann::json::parse(VORNSdk::state())["version"], "9.9.9");
}

TEST(StateWithoutVersion, AnAppInfoWithoutTheVersionReportsFailedToRead) {
  Platform platform = Platform::ephemeral();
  platform.app.sdkVersion.clear();
  Platform::install(platform);
  const auto sink = testing::CaptureLogSink::install();
  EXPECT_EQ(VORNSdk::sdkVersion(), "Failed to read version");
  EXPECT_EQ(nlohmann::json::parse(VORNSdk::state())["version"], "Failed to read version");

  VORNSdk::initializeSdk(Config());
  EXPECT_TRUE(sink->waitFor("SDK initializing with version: Failed to read version"));
}

}  // namespace
}  // namespace vorn::sdktest

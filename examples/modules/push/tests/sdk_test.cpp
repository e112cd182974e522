// The module as an app meets it: started by VORNSdk, fed by IDENTITY through the event bus,
// reached through the PUSH facade, and reported in VORNSdk::state().
#include "PushTestSupport.hpp"
#include "vorn/core/ConfigBuilder.hpp"
#include "vorn/sdk/VORNSdk.hpp"

namespace push::test {
namespace {

using vorn::testing::waitUntil;

TEST_F(PushModuleTest, StartedByTheSdkItRegistersTheContactAndReportsItsState) {
  vorn::VORNSdk::initializeSdk(
      vorn::ConfigBuilder()
          .setPush(std::make_shared<PushModuleConfig>("sdk-app", PushSettings{backend.url()}))
          .build());
  ASSERT_TRUE(waitUntil([] {
    return vorn::VORNSdk::mp()->getStatus() == vorn::ModuleStatus::operational &&
           vorn::VORNSdk::initializationState() == vorn::InitializationState::READY;
  }));

  vorn::VORNSdk::identity()->setProfileId("sdk-contact");
  ASSERT_TRUE(waitUntil([] { return vorn::VORNSdk::mp()->contactKey() == "sdk-contact"; }));
  vorn::VORNSdk::mp()->setDeviceToken({0x0A});
  EXPECT_TRUE(vorn::VORNSdk::mp()->addTag("sdk"));

  ASSERT_TRUE(waitUntil([] {
    const std::string state = vorn::VORNSdk::state();
    return state.find("\"registered\": true") != std::string::npos &&
           state.find("\"tags\": 1") != std::string::npos;
  }));
  const nlohmann::json last = backend.received("/v1/registration").back().body;
  EXPECT_EQ(last["contactKey"], "sdk-contact");
  EXPECT_EQ(last["deviceToken"], "0a");
  EXPECT_EQ(last["tags"], nlohmann::json{"sdk"});
  const std::string state = vorn::VORNSdk::state();
  EXPECT_NE(state.find("\"tokenRefreshes\": 1"), std::string::npos) << state;
  EXPECT_NE(state.find("\"inboxMessages\": 0"), std::string::npos) << state;

  vorn::VORNSdk::tearDownModule(vorn::ModuleName::push);
  EXPECT_EQ(vorn::VORNSdk::mp()->getStatus(), vorn::ModuleStatus::inactive);
}

}  // namespace
}  // namespace push::test

// The module as an app meets it: started by VORNSdk, fed by VORNSdk::track and IDENTITY through
// the event bus, reached through the CDP facade, and reported in VORNSdk::state().
#include <gmock/gmock.h>

#include "CdpTestSupport.hpp"
#include "vorn/core/ConfigBuilder.hpp"
#include "vorn/sdk/VORNSdk.hpp"

namespace cdp::test {
namespace {

using ::testing::HasSubstr;

TEST_F(CdpModuleTest, StartedByTheSdkItUploadsTrackedEventsAndReportsItsState) {
  vorn::VORNSdk::initializeSdk(
      vorn::ConfigBuilder()
          .setCdp(std::make_shared<CdpModuleConfig>("sdk-app", settings(2, 60)))
          .build());
  ASSERT_TRUE(vorn::testing::waitUntil([] {
    return vorn::VORNSdk::cdp()->getStatus() == vorn::ModuleStatus::operational &&
           vorn::VORNSdk::initializationState() == vorn::InitializationState::READY;
  }));

  vorn::VORNSdk::identity()->setProfileId("sdk-profile");
  vorn::VORNSdk::cdp()->setConsent(vorn::Consent::optIn);
  const auto first = vorn::CustomEvent::create("opened");
  const auto second = vorn::CustomEvent::create("closed");
  vorn::VORNSdk::track(first);
  vorn::VORNSdk::track(second);

  ASSERT_TRUE(collector.waitForAccepted(2));
  EXPECT_THAT(collector.acceptedIds(), ::testing::UnorderedElementsAre(first->id(), second->id()));
  ASSERT_TRUE(vorn::testing::waitUntil([] {
    const auto identity = vorn::VORNSdk::cdp()->getIdentity();
    return identity && identity->profileId == "sdk-profile";
  }));
  EXPECT_EQ(vorn::VORNSdk::cdp()->getConsent(), vorn::Consent::optIn);
  ASSERT_TRUE(vorn::testing::waitUntil(
      [] { return vorn::VORNSdk::state().find("\"uploadedEvents\": 2") != std::string::npos; }));
  const std::string state = vorn::VORNSdk::state();
  EXPECT_THAT(state, HasSubstr("\"consent\": \"opt_in\""));
  EXPECT_THAT(state, HasSubstr("\"queuedEvents\": 0"));
  EXPECT_THAT(state, HasSubstr("\"droppedEvents\": 0"));
  EXPECT_THAT(state, HasSubstr("\"version\": \"2.4.0\""));
  EXPECT_THAT(vorn::VORNSdk::identity()->toJson(), HasSubstr("\"profileId\":\"sdk-profile\""));

  vorn::VORNSdk::tearDownModule(vorn::ModuleName::cdp);
  EXPECT_EQ(vorn::VORNSdk::cdp()->getStatus(), vorn::ModuleStatus::inactive);
}

}  // namespace
}  // namespace cdp::test

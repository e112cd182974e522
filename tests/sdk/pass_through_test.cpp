#include <gtest/gtest.h>

#include "sdk/SdkTestSupport.hpp"
#include "vorn/events/CustomEvent.hpp"
#include "vorn/identity/DataMergeMarkers.hpp"
#include "vorn/platform/KeychainItem.hpp"

namespace vorn::sdktest {
namespace {

using testing::FakeModule;

class PassThroughTest : public SdkTest {};

TEST_F(PassThroughTest, FileProtectionDefaultsToUntilFirstUserAuthentication) {
  EXPECT_EQ(VORNSdk::fileProtectionType(),
            FileProtectionType::completeUntilFirstUserAuthentication);
  VORNSdk::setFileProtectionType(FileProtectionType::complete);
  EXPECT_EQ(VORNSdk::fileProtectionType(), FileProtectionType::complete);
  VORNSdk::setFileProtectionType(std::nullopt);
  EXPECT_EQ(VORNSdk::fileProtectionType(),
            FileProtectionType::completeUntilFirstUserAuthentication);
}

TEST_F(PassThroughTest, KeyStoreSettingsAreFixed) {
  VORNSdk::setKeychainAccessErrorsAreFatal(true);
  EXPECT_FALSE(VORNSdk::keychainAccessErrorsAreFatal());
  VORNSdk::setKeychainAccessibleAttribute("ak");
  EXPECT_EQ(VORNSdk::keychainAccessibleAttribute(),
            kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
}

TEST_F(PassThroughTest, TheMergePolicyIsTheDataPolicys) {
  EXPECT_EQ(VORNSdk::getDataMergePolicy(), DataMergePolicy::notSet);
  EXPECT_FALSE(VORNSdk::getAutoDataPolicyCallBack());
  bool merged = false;
  VORNSdk::setAutoMergePolicy([&](bool value) { merged = value; });
  VORNSdk::setManualMergePolicy([](const Dictionary&, const Dictionary&) {});
  EXPECT_EQ(VORNSdk::getDataMergePolicy(), DataMergePolicy::manual);
  VORNSdk::getAutoDataPolicyCallBack()(true);
  EXPECT_TRUE(merged);
  EXPECT_TRUE(VORNSdk::getManualDataPolicyCallBack());
  EXPECT_TRUE(VORNSdk::resetDataPolicy("APP1"));
  EXPECT_TRUE(sink->contains("Data policy reset Started!"));
}

TEST_F(PassThroughTest, TrackedEventsReachAnOperationalModule) {
  registerBothModules();
  ASSERT_TRUE(startReady(ConfigBuilder().setCdp(moduleConfig(ModuleName::cdp)).build()));
  VORNSdk::track(CustomEvent::create("purchase"));
  VORNSdk::track(nullptr);

  const auto module = FakeModule::started(ModuleName::cdp).at(0);
  ASSERT_TRUE(module->waitForMessages(1));
  EXPECT_EQ(module->received().at(0)->fromEvent()->name(), "purchase");
  EXPECT_EQ(module->received().at(0)->producer(), "sdk");
}

TEST_F(PassThroughTest, TheFacadesAndTheIdentityAreTheSharedOnes) {
  EXPECT_EQ(VORNSdk::cdp(), CDP::shared());
  EXPECT_EQ(VORNSdk::mp(), PUSH::shared());
  EXPECT_EQ(VORNSdk::identity(), IDENTITY::shared());
  const auto replacement = std::make_shared<IDENTITY>();
  VORNSdk::setIdentity(replacement);
  VORNSdk::setIdentity(nullptr);
  EXPECT_EQ(VORNSdk::identity(), replacement);
}

TEST_F(PassThroughTest, ARequestForAnOperationalPushModuleRunsAtOnce) {
  registerBothModules();
  ASSERT_TRUE(startReady(ConfigBuilder().setPush(moduleConfig(ModuleName::push)).build()));
  std::shared_ptr<PushInterface> handed;
  VORNSdk::requestPushSdk([&](std::shared_ptr<PushInterface> push) { handed = push; });
  EXPECT_EQ(handed, VORNSdk::mp());
}

}  // namespace
}  // namespace vorn::sdktest

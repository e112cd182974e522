#include <gtest/gtest.h>

#include "sdk/SdkTestSupport.hpp"
#include "vorn/storage/keychain/KeyChainWrapper.hpp"
#include "vorn/testing/FaultyKeychainStore.hpp"

namespace vorn::sdktest {
namespace {

using testing::FakeModule;
using testing::FaultyKeychainStore;
using testing::KeychainOperation;

constexpr const char* kFaultLine = "Keychain is Not Accessible. VORNSDK will Not initialize!";

class KeyStoreCheckTest : public SdkTest {
 protected:
  KeyStoreCheckTest() { testing::installEphemeralPlatform(keychain); }

  bool migrated() {
    return Platform::current()->defaults->boolFor(DefaultsStore::kStandardSuite,
                                                  kAccessibilityMigratedKey);
  }

  std::shared_ptr<FaultyKeychainStore> keychain = std::make_shared<FaultyKeychainStore>();
};

TEST_F(KeyStoreCheckTest, AKeyStoreThatStaysLockedStopsTheStartUpWithTheFaultLineOnly) {
  registerBothModules();
  keychain->failAlways(KeychainOperation::add, errSecInteractionNotAllowed);
  VORNSdk::initializeSdk(
      ConfigBuilder().setPush(moduleConfig(ModuleName::push), outcomes.callback("push")).build());

  ASSERT_TRUE(sink->waitFor(kFaultLine));
  const auto fault = sink->find(kFaultLine);
  EXPECT_EQ(fault->level, LogLevel::fault);
  EXPECT_EQ(fault->category, LoggerCategory::sdk);
  EXPECT_EQ(keychain->calls(KeychainOperation::add), 10);

  // Nothing of the start-up itself happened: once a later start-up has run on the same
  // queue, the first one has certainly finished.
  keychain->clearFaults();
  ASSERT_TRUE(startReady(Config()));
  EXPECT_EQ(sink->count("SDK initializing with version: " + version), 1u);
  EXPECT_FALSE(sink->contains("Reinitializing sdk. Existing module instances will be replaced."));
  EXPECT_TRUE(FakeModule::started(ModuleName::push).empty());
  EXPECT_EQ(VORNSdk::mp()->getStatus(), ModuleStatus::inactive);
  EXPECT_TRUE(outcomes.heard().empty());
}

TEST_F(KeyStoreCheckTest, AKeyStoreThatOpensWithinTenProbesLetsTheStartUpGoOn) {
  keychain->failNext(KeychainOperation::add, errSecInteractionNotAllowed, 9);
  ASSERT_TRUE(startReady(Config()));
  EXPECT_FALSE(sink->contains(kFaultLine));
  EXPECT_EQ(keychain->calls(KeychainOperation::add), 10);
}

TEST_F(KeyStoreCheckTest, TheAccessibilityMigrationRunsUntilItSucceeds) {
  keychain->failNext(KeychainOperation::copyMatching, errSecInteractionNotAllowed);
  ASSERT_TRUE(startReady(Config()));
  const auto failed = sink->find(
      "Keychain Accessibility Migration Failed. Will attempt again on next initialization");
  ASSERT_NE(failed, nullptr);
  EXPECT_EQ(failed->level, LogLevel::warning);
  EXPECT_FALSE(migrated());

  registerBothModules();
  ASSERT_TRUE(startReady(ConfigBuilder().setPush(moduleConfig(ModuleName::push)).build()));
  EXPECT_TRUE(sink->contains("Keychain Accessibility Migration Complete"));
  EXPECT_TRUE(migrated());
}

TEST_F(KeyStoreCheckTest, AMigratedKeyStoreIsNotMigratedAgain) {
  ASSERT_TRUE(startReady(Config()));
  ASSERT_TRUE(sink->contains("Keychain Accessibility Migration Complete"));
  registerBothModules();
  ASSERT_TRUE(startReady(ConfigBuilder().setCdp(moduleConfig(ModuleName::cdp)).build()));
  EXPECT_EQ(sink->count("Keychain Accessibility Migration Complete"), 1u);
}

}  // namespace
}  // namespace vorn::sdktest

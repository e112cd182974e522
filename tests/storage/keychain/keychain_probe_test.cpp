// The start-up probes and the accessibility migration with its user-defaults flag.
#include <gtest/gtest.h>

#include <chrono>

#include "vorn/storage/keychain/KeyChainWrapper.hpp"
#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FaultyKeychainStore.hpp"
#include "vorn/testing/PlatformInstall.hpp"
#include "vorn/testing/TimeScale.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;
using testing::FaultyKeychainStore;
using testing::KeychainOperation;

constexpr std::string_view kAppVersionService = "com.quorvantis.tessarine.VORNSdk_appVersion";

class KeychainProbeTest : public ::testing::Test {
 protected:
  void SetUp() override { platform_ = testing::installEphemeralPlatform(store_); }

  bool migratedFlag() {
    return platform_.defaults->object(DefaultsStore::kStandardSuite, kAccessibilityMigratedKey)
        .has_value();
  }

  OSStatus addItem(std::string service, std::optional<std::string> account,
                   std::string_view accessible) {
    return store_->inner()->add(KeychainItem{
        std::move(service), std::move(account), std::string(accessible), KeychainData{1, 2}, {}});
  }

  std::shared_ptr<FaultyKeychainStore> store_ = std::make_shared<FaultyKeychainStore>();
  Platform platform_;
  std::shared_ptr<CaptureLogSink> sink_ = CaptureLogSink::install();
};

TEST_F(KeychainProbeTest, WriteProbeLeavesNothingBehind) {
  EXPECT_TRUE(KeyChainWrapper::checkWriteAccess(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly));
  const auto added = store_->lastAdd();
  ASSERT_TRUE(added);
  EXPECT_EQ(added->service, "VORNSDKWriteAccessTest");
  EXPECT_EQ(added->account, "VORNSDKNoAccount");
  EXPECT_EQ(added->data, KeychainData({'W', 'r', 'i', 't', 'e', ' ', 'T', 'e', 's', 't'}));
  EXPECT_EQ(store_->calls(KeychainOperation::remove), 1);
  // A second probe would collide with a leftover item; it passes, so none was left.
  EXPECT_TRUE(KeyChainWrapper::checkWriteAccess(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly));
}

TEST_F(KeychainProbeTest, LeftoverProbeItemFailsTheWriteProbe) {
  ASSERT_EQ(addItem("VORNSDKWriteAccessTest", "VORNSDKNoAccount", kSecAttrAccessibleAlways),
            errSecSuccess);
  EXPECT_FALSE(KeyChainWrapper::checkWriteAccess(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly));
  const auto line = sink_->find("Keychain Write Access Not Available, code: -25299");
  ASSERT_NE(line, nullptr);
  EXPECT_EQ(line->level, LogLevel::fault);
  EXPECT_EQ(line->category, LoggerCategory::sdk);
}

TEST_F(KeychainProbeTest, ReadProbeAcceptsNotFoundAndStopsAtAnError) {
  EXPECT_TRUE(KeyChainWrapper::checkReadAccess());
  EXPECT_EQ(store_->calls(KeychainOperation::copyMatching), 4);
  store_->failAlways(KeychainOperation::copyMatching, errSecInteractionNotAllowed,
                     std::string(kAppVersionService));
  EXPECT_FALSE(KeyChainWrapper::checkReadAccess());
  const auto line = sink_->find("Keychain Read Access Not Available, code: -25308");
  ASSERT_NE(line, nullptr);
  EXPECT_EQ(line->level, LogLevel::fault);
}

TEST_F(KeychainProbeTest, AvailabilityProbeRetriesUntilBothProbesPass) {
  testing::ScopedTimeScale fast(0.01);
  store_->failNext(KeychainOperation::add, errSecInteractionNotAllowed, 2);
  store_->failNext(KeychainOperation::copyMatching, errSecNotAvailable, 1);
  EXPECT_TRUE(KeyChainWrapper::isKeychainAccessible());
  EXPECT_EQ(store_->calls(KeychainOperation::add), 4);
}

TEST_F(KeychainProbeTest, AvailabilityProbeGivesUpAfterTenAttempts) {
  testing::ScopedTimeScale fast(0.01);
  store_->failAlways(KeychainOperation::add, errSecInteractionNotAllowed);
  EXPECT_FALSE(KeyChainWrapper::isKeychainAccessible());
  EXPECT_EQ(store_->calls(KeychainOperation::add), 10);
  EXPECT_EQ(store_->calls(KeychainOperation::copyMatching), 0);
  EXPECT_EQ(sink_->count("Keychain Write Access Not Available, code: -25308"), 10u);
}

// Keeps the real interval: ten failed attempts take at least five seconds.
TEST_F(KeychainProbeTest, AvailabilityProbeTakesFiveSecondsWhenRefused) {
  store_->failAlways(KeychainOperation::add, errSecInteractionNotAllowed);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(KeyChainWrapper::isKeychainAccessible());
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(5000));
}

TEST_F(KeychainProbeTest, MigrationWithNothingFoundSucceedsAndSetsTheFlag) {
  EXPECT_TRUE(KeyChainWrapper::migrateKeychainAccessibilityIfNeeded());
  EXPECT_TRUE(
      platform_.defaults->boolFor(DefaultsStore::kStandardSuite, kAccessibilityMigratedKey));
  EXPECT_EQ(sink_->count("Keychain item not found. Skipping..."), 4u);
  const auto line = sink_->find("Keychain Accessibility Migration Complete");
  ASSERT_NE(line, nullptr);
  EXPECT_EQ(line->category, LoggerCategory::sdk);

  // Once set, the flag stops the migration from reading the keychain again.
  const int reads = store_->calls(KeychainOperation::copyMatching);
  EXPECT_TRUE(KeyChainWrapper::migrateKeychainAccessibilityIfNeeded());
  EXPECT_EQ(store_->calls(KeychainOperation::copyMatching), reads);
}

TEST_F(KeychainProbeTest, MigrationReadErrorFailsAndLeavesTheFlagUnset) {
  store_->failAlways(KeychainOperation::copyMatching, errSecInteractionNotAllowed,
                     std::string(kAppVersionService));
  EXPECT_FALSE(KeyChainWrapper::migrateKeychainAccessibilityIfNeeded());
  EXPECT_FALSE(migratedFlag());
  EXPECT_TRUE(sink_->contains("Cannot read the keychain: -25308"));
  const auto line = sink_->find(
      "Keychain Accessibility Migration Failed. Will attempt again on next initialization");
  ASSERT_NE(line, nullptr);
  EXPECT_EQ(line->level, LogLevel::warning);
}

TEST_F(KeychainProbeTest, MigrationUpdatesOnlyItemsWithAnotherAccessibility) {
  ASSERT_EQ(addItem(std::string(kAppVersionService), std::nullopt, kSecAttrAccessibleWhenUnlocked),
            errSecSuccess);
  ASSERT_EQ(addItem(std::string(kAppVersionService), "other",
                    kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly),
            errSecSuccess);
  EXPECT_TRUE(VORNKeychainItemWrapper::updateKeychainAccessibleAttribute(
      kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly));
  EXPECT_EQ(store_->calls(KeychainOperation::update), 1);
  EXPECT_TRUE(sink_->contains("Updating item from 'ak' to 'cku'."));
  EXPECT_TRUE(sink_->contains("Updated Keychain accessibility attribute to: cku"));

  KeychainQuery all;
  all.service = std::string(kAppVersionService);
  all.matchLimit = MatchLimit::all;
  all.returnAttributes = true;
  all.returnData = true;
  std::vector<KeychainItem> items;
  ASSERT_EQ(store_->inner()->copyMatching(all, items), errSecSuccess);
  ASSERT_EQ(items.size(), 2u);
  for (const auto& item : items) {
    EXPECT_EQ(item.accessible, std::string(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly));
    EXPECT_EQ(item.data, (KeychainData{1, 2}));
  }
}

TEST_F(KeychainProbeTest, MigrationStopsAtAFailedUpdate) {
  ASSERT_EQ(
      addItem("com.quorvantis.security.baseappid.sim", std::nullopt, kSecAttrAccessibleAlways),
      errSecSuccess);
  store_->failAlways(KeychainOperation::update, errSecAuthFailed);
  EXPECT_FALSE(KeyChainWrapper::migrateKeychainAccessibilityIfNeeded());
  EXPECT_FALSE(migratedFlag());
  EXPECT_TRUE(sink_->contains(
      "com.quorvantis.security.keychainException - updateKeychainAccessibleAttribute: Error "
      "updating keychain item: errSecAuthFailed."));
  // Stopped at the first service: the other three were never read.
  EXPECT_EQ(store_->calls(KeychainOperation::copyMatching), 1);
}

}  // namespace
}  // namespace vorn

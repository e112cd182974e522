#include <gtest/gtest.h>

#include <memory>
#include <regex>
#include <string>

#include "storage/secure_prefs_support.hpp"
#include "vorn/platform/Platform.hpp"
#include "vorn/storage/prefs/StorageManager.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;

bool isUpperCaseUuid(const std::string& text) {
  static const std::regex pattern(
      "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
  return std::regex_match(text, pattern);
}

class StorageManagerTest : public ::testing::Test {
 protected:
  void SetUp() override { Platform::install(Platform::ephemeral()); }

  SecurePrefs registrationPrefs(std::shared_ptr<EncryptionManager> manager) {
    return SecurePrefs(std::string(StorageManager::kRegistrationSuite), std::move(manager));
  }
};

TEST_F(StorageManagerTest, FirstStartCreatesAndStoresARegistrationId) {
  auto sink = CaptureLogSink::install();
  auto manager = test::managerWithKeyByte(3);
  const StorageManager storage(manager, "APP1");
  const std::string id = storage.getRegistrationId();
  EXPECT_TRUE(isUpperCaseUuid(id)) << id;
  EXPECT_EQ(registrationPrefs(manager).stringFor("registrationId"), id);
  const auto line =
      sink->find("StorageManager was initialized with new registration id (" + id + ").");
  ASSERT_NE(line, nullptr);
  EXPECT_EQ(line->level, LogLevel::debug);
  EXPECT_EQ(line->category, LoggerCategory::storage);
}

TEST_F(StorageManagerTest, LaterManagersOfTheModuleReuseIt) {
  auto manager = test::managerWithKeyByte(3);
  const std::string id = StorageManager(manager, "APP1").getRegistrationId();
  auto sink = CaptureLogSink::install();
  const StorageManager again(test::managerWithKeyByte(3), "OTHER_APP");
  EXPECT_EQ(again.getRegistrationId(), id);
  EXPECT_EQ(sink->messages(),
            std::vector<std::string>{
                "StorageManager was initialized with existing registration id (" + id + ")."});
}

TEST_F(StorageManagerTest, EachModuleKeyHasItsOwnIdInTheSharedSuite) {
  const std::string push = StorageManager(test::managerWithKeyByte(3), "APP1").getRegistrationId();
  const std::string cdp = StorageManager(test::managerWithKeyByte(50), "APP1").getRegistrationId();
  EXPECT_NE(push, cdp);
  EXPECT_EQ(StorageManager(test::managerWithKeyByte(3), "APP1").getRegistrationId(), push);
  EXPECT_EQ(StorageManager(test::managerWithKeyByte(50), "APP1").getRegistrationId(), cdp);
}

TEST_F(StorageManagerTest, ModulesOfTheKeyStoreGetDistinctIds) {
  const StorageManager push(std::make_shared<EncryptionManager>(ModuleName::push), "APP1");
  const StorageManager cdp(std::make_shared<EncryptionManager>(ModuleName::cdp), "APP1");
  EXPECT_TRUE(isUpperCaseUuid(push.getRegistrationId()));
  EXPECT_NE(push.getRegistrationId(), cdp.getRegistrationId());
  const StorageManager pushAgain(std::make_shared<EncryptionManager>(ModuleName::push), "APP1");
  EXPECT_EQ(pushAgain.getRegistrationId(), push.getRegistrationId());
}

TEST_F(StorageManagerTest, StorageNamesJoinAppRegistrationAndName) {
  const StorageManager storage(test::managerWithKeyByte(3), "APP1");
  const std::string expected =
      "com.quorvantis.tessarine_APP1_" + storage.getRegistrationId() + "_push";
  EXPECT_EQ(storage.getFilenameForModuleInstallation("push"), expected);
  EXPECT_EQ(storage.getOrCreateSecurePrefs("push")->suiteName(), expected);
  EXPECT_EQ(storage.moduleAppId(), "APP1");
}

TEST_F(StorageManagerTest, PrefsOfOneNameShareEntriesAndTheModuleKey) {
  const StorageManager storage(test::managerWithKeyByte(3), "APP1");
  auto first = storage.getOrCreateSecurePrefs("network");
  auto second = storage.getOrCreateSecurePrefs("network");
  EXPECT_NE(first, second);
  EXPECT_EQ(first->encryptionManager(), storage.encryptionManager());
  first->setString("v", "k");
  EXPECT_EQ(second->stringFor("k"), "v");
  EXPECT_EQ(storage.getOrCreateSecurePrefs("other")->stringFor("k"), std::nullopt);
}

TEST_F(StorageManagerTest, UnusableKeyStillGivesAnIdForThisLaunch) {
  auto sink = CaptureLogSink::install();
  const StorageManager storage(std::make_shared<EncryptionManager>(nullptr), "APP1");
  EXPECT_TRUE(isUpperCaseUuid(storage.getRegistrationId()));
  EXPECT_EQ(sink->count("Failed to encrypt key: \"registrationId\""), 1u);
}

TEST(StorageManagerFileProtection, DefaultsToUntilFirstUnlockAndKeepsWhatIsSet) {
  EXPECT_EQ(StorageManager::fileSystemProtectionType(),
            FileProtectionType::completeUntilFirstUserAuthentication);
  StorageManager::setFileSystemProtectionType(FileProtectionType::complete);
  EXPECT_EQ(StorageManager::fileSystemProtectionType(), FileProtectionType::complete);
  StorageManager::setFileSystemProtectionType(std::nullopt);
  EXPECT_EQ(StorageManager::fileSystemProtectionType(), std::nullopt);
}

TEST(StorageManagerFileProtection, RawValuesAreThePlatformNames) {
  EXPECT_EQ(rawValue(FileProtectionType::none), "NSFileProtectionNone");
  EXPECT_EQ(rawValue(FileProtectionType::complete), "NSFileProtectionComplete");
  EXPECT_EQ(rawValue(FileProtectionType::completeUnlessOpen), "NSFileProtectionCompleteUnlessOpen");
  EXPECT_EQ(rawValue(FileProtectionType::completeUntilFirstUserAuthentication),
            "NSFileProtectionCompleteUntilFirstUserAuthentication");
  for (auto type : {FileProtectionType::none, FileProtectionType::complete,
                    FileProtectionType::completeUnlessOpen,
                    FileProtectionType::completeUntilFirstUserAuthentication}) {
    EXPECT_EQ(fileProtectionTypeFrom(rawValue(type)), type);
  }
  EXPECT_EQ(fileProtectionTypeFrom("nsfileprotectionnone"), std::nullopt);
}

}  // namespace
}  // namespace vorn

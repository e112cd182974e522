// A null EncryptionManager handed to SecurePrefs or StorageManager is reported and makes
// storage that reads nothing and writes nothing, instead of a crash.
#include <gtest/gtest.h>

#include "storage/secure_prefs_support.hpp"
#include "vorn/storage/prefs/StorageManager.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/PlatformInstall.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;

constexpr std::string_view kPrefsLine =
    "SecurePrefs of suite prefs was given no encryption manager; nothing will be stored or read.";
constexpr std::string_view kStorageLine =
    "StorageManager of app APP1 was given no encryption manager; nothing will be stored or read.";

TEST(NullEncryptionManager, SecurePrefsStoresAndReadsNothing) {
  auto sink = CaptureLogSink::install();
  auto defaults = DefaultsStore::inMemory();
  SecurePrefs prefs(defaults->suite("prefs"), nullptr);
  const auto line = sink->find(kPrefsLine);
  ASSERT_NE(line, nullptr) << ::testing::PrintToString(sink->messages());
  EXPECT_EQ(line->level, LogLevel::error);
  EXPECT_EQ(line->category, LoggerCategory::storage);
  EXPECT_FALSE(prefs.setString("value", "key"));
  EXPECT_FALSE(prefs.setInt(5, "number"));
  EXPECT_FALSE(prefs.stringFor("key"));
  EXPECT_FALSE(prefs.boolFor("key"));
  EXPECT_FALSE(prefs.remove("key"));
  EXPECT_TRUE(sink->contains("Failed to encrypt key: \"key\""));
  EXPECT_TRUE(
      sink->contains("Failed to return value by key, because key: \"key\" could not be "
                     "re-encrypted."));
  EXPECT_TRUE(defaults->suite("prefs").object("key") == std::nullopt);
  prefs.clearAll();
  EXPECT_FALSE(prefs.isLive());
}

TEST(NullEncryptionManager, StorageManagerHasNoRegistrationAndWritesNothing) {
  auto sink = CaptureLogSink::install();
  auto defaults = std::make_shared<test::TableDefaults>();
  testing::installEphemeralPlatform(nullptr, defaults);
  StorageManager storage(nullptr, "APP1");
  const auto line = sink->find(kStorageLine);
  ASSERT_NE(line, nullptr) << ::testing::PrintToString(sink->messages());
  EXPECT_EQ(line->level, LogLevel::error);
  EXPECT_EQ(line->category, LoggerCategory::storage);
  EXPECT_EQ(storage.getRegistrationId(), "");
  const auto prefs = storage.getOrCreateSecurePrefs("values");
  ASSERT_NE(prefs, nullptr);
  EXPECT_FALSE(prefs->setString("value", "key"));
  EXPECT_FALSE(prefs->stringFor("key"));
  EXPECT_TRUE(defaults->entries(StorageManager::kRegistrationSuite).empty());
  EXPECT_TRUE(defaults->entries(storage.getFilenameForModuleInstallation("values")).empty());
}

}  // namespace
}  // namespace vorn

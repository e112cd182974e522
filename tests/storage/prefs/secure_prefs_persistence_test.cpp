#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "vorn/platform/Platform.hpp"
#include "vorn/storage/prefs/StorageManager.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/ChildProcess.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace vorn {
namespace {

constexpr const char* kDirVariable = "VORN_TEST_PERSIST_DIR";
constexpr std::string_view kIdKey = "persist.registrationId";
constexpr std::string_view kService = "com.quorvantis.test.persist";
const KeychainData kSecret{0x00, 0x01, 0xFE, 0xFF, 's', 'e', 'c'};

std::shared_ptr<SecurePrefs> pushPrefs(std::unique_ptr<StorageManager>& storage) {
  storage = std::make_unique<StorageManager>(std::make_shared<EncryptionManager>(ModuleName::push),
                                             "APP1");
  return storage->getOrCreateSecurePrefs("push");
}

// The first launch: writes through every store, then exits.
TEST(SecurePrefsPersistenceChild, WriteEverything) {
  const auto dir = testing::childOrder(kDirVariable);
  if (!dir) {
    GTEST_SKIP() << "runs only as the child of SecurePrefsPersistence";
  }
  const Platform platform = Platform::defaultPlatform(*dir);
  Platform::install(platform);
  std::unique_ptr<StorageManager> storage;
  auto prefs = pushPrefs(storage);
  ASSERT_TRUE(prefs->setString("text \xE2\x82\xAC", "string"));
  ASSERT_TRUE(prefs->setInt(-42, "int"));
  ASSERT_TRUE(prefs->setBool(true, "bool"));
  ASSERT_TRUE(prefs->setDouble(0.1, "double"));
  ASSERT_TRUE(prefs->setString("to be removed", "gone"));
  ASSERT_TRUE(prefs->remove("gone"));

  DefaultsStore& defaults = *platform.defaults;
  ASSERT_TRUE(
      defaults.setString(DefaultsStore::kStandardSuite, storage->getRegistrationId(), kIdKey));
  ASSERT_TRUE(defaults.setInteger(DefaultsStore::kStandardSuite, 7, "persist.int"));
  ASSERT_TRUE(defaults.setData("some.suite", DefaultsData{1, 2, 3}, "persist.data"));

  KeychainItem item;
  item.service = std::string(kService);
  item.account = "acct";
  item.data = kSecret;
  ASSERT_EQ(platform.keychain->add(item), 0);
}

TEST(SecurePrefsPersistence, SecondProcessReadsWhatTheFirstWrote) {
  const testing::TemporaryDirectory dir;
  ASSERT_FALSE(dir.path().empty());
  const pid_t child = testing::spawnSelf("SecurePrefsPersistenceChild.WriteEverything",
                                         {{kDirVariable, dir.path().string()}});
  ASSERT_GT(child, 0);
  ASSERT_EQ(testing::waitForExit(child), 0) << "the writing process failed; see its output";

  auto sink = testing::CaptureLogSink::install();
  const Platform platform = Platform::defaultPlatform(dir.path());
  Platform::install(platform);

  const auto storedId = platform.defaults->stringFor(DefaultsStore::kStandardSuite, kIdKey);
  ASSERT_TRUE(storedId.has_value());
  std::unique_ptr<StorageManager> storage;
  auto prefs = pushPrefs(storage);
  EXPECT_EQ(storage->getRegistrationId(), *storedId);
  EXPECT_TRUE(sink->contains("StorageManager was initialized with existing registration id (" +
                             *storedId + ")."));
  EXPECT_EQ(prefs->stringFor("string"), "text \xE2\x82\xAC");
  EXPECT_EQ(prefs->intFor("int"), -42);
  EXPECT_EQ(prefs->boolFor("bool"), true);
  EXPECT_EQ(prefs->doubleFor("double"), 0.1);
  EXPECT_EQ(prefs->stringFor("gone"), std::nullopt);

  EXPECT_EQ(platform.defaults->integerFor(DefaultsStore::kStandardSuite, "persist.int"), 7);
  EXPECT_EQ(platform.defaults->dataFor("some.suite", "persist.data"), (DefaultsData{1, 2, 3}));

  KeychainQuery query;
  query.service = std::string(kService);
  query.returnAttributes = true;
  query.returnData = true;
  std::vector<KeychainItem> found;
  ASSERT_EQ(platform.keychain->copyMatching(query, found), 0);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].account, "acct");
  EXPECT_EQ(found[0].data, kSecret);
}

}  // namespace
}  // namespace vorn

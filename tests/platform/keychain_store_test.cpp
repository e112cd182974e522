// Both key store backends answer the same calls with the same statuses and results.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>

#include "vorn/platform/KeychainStore.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace vorn {
namespace {

KeychainData bytes(std::string_view text) {
  return KeychainData(text.begin(), text.end());
}

KeychainItem item(std::string service, std::optional<std::string> account,
                  std::optional<std::string_view> value = std::nullopt) {
  KeychainItem result;
  result.service = std::move(service);
  result.account = std::move(account);
  if (value)
    result.data = bytes(*value);
  return result;
}

KeychainQuery query(std::optional<std::string> service, std::optional<std::string> account,
                    MatchLimit limit = MatchLimit::one) {
  KeychainQuery result;
  result.service = std::move(service);
  result.account = std::move(account);
  result.matchLimit = limit;
  result.returnAttributes = true;
  result.returnData = true;
  return result;
}

struct Backend {
  const char* name;
  std::function<std::shared_ptr<KeychainStore>(const std::filesystem::path&)> open;
};

void PrintTo(const Backend& backend, std::ostream* out) {
  *out << backend.name;
}

class KeychainStoreTest : public ::testing::TestWithParam<Backend> {
 protected:
  void SetUp() override {
    store_ = GetParam().open(dir_.path());
    ASSERT_NE(store_, nullptr);
  }

  testing::TemporaryDirectory dir_;
  std::shared_ptr<KeychainStore> store_;
};

TEST_P(KeychainStoreTest, AddThenFindReturnsAttributesAndData) {
  KeychainItem added = item("svc", "alice", "secret");
  added.accessible = std::string(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
  added.attributes["labl"] = std::string("label");
  added.attributes["gena"] = bytes("\x01\x02");
  ASSERT_EQ(store_->add(added), errSecSuccess);

  std::vector<KeychainItem> found;
  ASSERT_EQ(store_->copyMatching(query("svc", "alice"), found), errSecSuccess);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0], added);
}

TEST_P(KeychainStoreTest, ReturnFlagsShapeTheResult) {
  ASSERT_EQ(store_->add(item("svc", std::nullopt, "v")), errSecSuccess);
  KeychainQuery dataOnly = query("svc", std::nullopt);
  dataOnly.returnAttributes = false;
  std::vector<KeychainItem> found;
  ASSERT_EQ(store_->copyMatching(dataOnly, found), errSecSuccess);
  EXPECT_FALSE(found[0].service.has_value());
  EXPECT_EQ(found[0].data, bytes("v"));

  KeychainQuery attributesOnly = query("svc", std::nullopt);
  attributesOnly.returnData = false;
  ASSERT_EQ(store_->copyMatching(attributesOnly, found), errSecSuccess);
  EXPECT_EQ(found[0].service, "svc");
  EXPECT_EQ(found[0].accessible, std::string(kSecAttrAccessibleWhenUnlocked));
  EXPECT_FALSE(found[0].data.has_value());
}

TEST_P(KeychainStoreTest, ItemWithoutValueReadsAsEmptyData) {
  ASSERT_EQ(store_->add(item("none", std::nullopt)), errSecSuccess);
  std::vector<KeychainItem> found;
  ASSERT_EQ(store_->copyMatching(query("none", std::nullopt), found), errSecSuccess);
  EXPECT_EQ(found[0].data, KeychainData());
  EXPECT_FALSE(found[0].account.has_value());
}

TEST_P(KeychainStoreTest, NotFoundAndDuplicate) {
  std::vector<KeychainItem> found{KeychainItem()};
  EXPECT_EQ(store_->copyMatching(query("svc", std::nullopt), found), errSecItemNotFound);
  EXPECT_TRUE(found.empty());
  ASSERT_EQ(store_->add(item("svc", std::nullopt, "a")), errSecSuccess);
  EXPECT_EQ(store_->add(item("svc", std::nullopt, "b")), errSecDuplicateItem);
  // No account and the empty account are one identity.
  EXPECT_EQ(store_->add(item("svc", "", "c")), errSecDuplicateItem);
  EXPECT_EQ(store_->add(item("svc", "bob", "d")), errSecSuccess);
}

TEST_P(KeychainStoreTest, QueryWithoutAccountMatchesEveryAccountInOrder) {
  ASSERT_EQ(store_->add(item("svc", "b", "1")), errSecSuccess);
  ASSERT_EQ(store_->add(item("other", "a", "x")), errSecSuccess);
  ASSERT_EQ(store_->add(item("svc", "a", "2")), errSecSuccess);
  std::vector<KeychainItem> found;
  ASSERT_EQ(store_->copyMatching(query("svc", std::nullopt, MatchLimit::all), found),
            errSecSuccess);
  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(found[0].account, "b");
  EXPECT_EQ(found[1].account, "a");
  ASSERT_EQ(store_->copyMatching(query("svc", std::nullopt, MatchLimit::one), found),
            errSecSuccess);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].account, "b");
}

TEST_P(KeychainStoreTest, UpdateChangesOnlyPresentFields) {
  KeychainItem added = item("svc", "a", "old");
  added.attributes["labl"] = std::string("kept");
  ASSERT_EQ(store_->add(added), errSecSuccess);
  KeychainItem changes;
  changes.accessible = std::string(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
  ASSERT_EQ(store_->update(query("svc", "a"), changes), errSecSuccess);

  std::vector<KeychainItem> found;
  ASSERT_EQ(store_->copyMatching(query("svc", "a"), found), errSecSuccess);
  EXPECT_EQ(found[0].data, bytes("old"));
  EXPECT_EQ(found[0].accessible, std::string(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly));
  EXPECT_EQ(std::get<std::string>(found[0].attributes.at("labl")), "kept");

  changes = KeychainItem();
  changes.data = bytes("new");
  ASSERT_EQ(store_->update(query("svc", "a"), changes), errSecSuccess);
  ASSERT_EQ(store_->copyMatching(query("svc", "a"), found), errSecSuccess);
  EXPECT_EQ(found[0].data, bytes("new"));
}

TEST_P(KeychainStoreTest, UpdateReportsNotFoundAndCollisions) {
  KeychainItem changes;
  changes.data = bytes("x");
  EXPECT_EQ(store_->update(query("svc", "a"), changes), errSecItemNotFound);
  ASSERT_EQ(store_->add(item("svc", "a", "1")), errSecSuccess);
  ASSERT_EQ(store_->add(item("svc", "b", "2")), errSecSuccess);
  KeychainItem rename;
  rename.account = std::string("b");
  rename.data = bytes("changed");
  EXPECT_EQ(store_->update(query("svc", "a"), rename), errSecDuplicateItem);
  std::vector<KeychainItem> found;
  ASSERT_EQ(store_->copyMatching(query("svc", "a"), found), errSecSuccess);
  EXPECT_EQ(found[0].data, bytes("1"));
}

TEST_P(KeychainStoreTest, RemoveDeletesEveryMatch) {
  ASSERT_EQ(store_->add(item("svc", "a", "1")), errSecSuccess);
  ASSERT_EQ(store_->add(item("svc", "b", "2")), errSecSuccess);
  ASSERT_EQ(store_->add(item("keep", std::nullopt, "3")), errSecSuccess);
  EXPECT_EQ(store_->remove(query("svc", std::nullopt)), errSecSuccess);
  EXPECT_EQ(store_->remove(query("svc", std::nullopt)), errSecItemNotFound);
  std::vector<KeychainItem> found;
  EXPECT_EQ(store_->copyMatching(query("keep", std::nullopt), found), errSecSuccess);
}

TEST_P(KeychainStoreTest, KeysByTagAndClass) {
  KeychainKey privateKey{"com.quorvantis.eckey.private.default",
                         KeychainKeyType::ec,
                         KeychainKeyClass::privateKey,
                         256,
                         std::nullopt,
                         bytes("der-private")};
  KeychainKey publicKey = privateKey;
  publicKey.keyClass = KeychainKeyClass::publicKey;
  publicKey.keyData = bytes("der-public");
  publicKey.accessible = std::string(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
  ASSERT_EQ(store_->storeKey(privateKey), errSecSuccess);
  ASSERT_EQ(store_->storeKey(publicKey), errSecSuccess);
  EXPECT_EQ(store_->storeKey(privateKey), errSecDuplicateItem);

  KeychainKey loaded;
  ASSERT_EQ(store_->loadKey(privateKey.applicationTag, KeychainKeyClass::publicKey, loaded),
            errSecSuccess);
  EXPECT_EQ(loaded, publicKey);
  ASSERT_EQ(store_->loadKey(privateKey.applicationTag, std::nullopt, loaded), errSecSuccess);
  EXPECT_EQ(loaded.keyData, bytes("der-private"));
  EXPECT_EQ(loaded.accessible, std::string(kSecAttrAccessibleWhenUnlocked));
  EXPECT_EQ(store_->loadKey("other", std::nullopt, loaded), errSecItemNotFound);

  EXPECT_EQ(store_->deleteKey(privateKey.applicationTag), errSecSuccess);
  EXPECT_EQ(store_->deleteKey(privateKey.applicationTag), errSecItemNotFound);
  EXPECT_EQ(store_->loadKey(privateKey.applicationTag, std::nullopt, loaded), errSecItemNotFound);
}

INSTANTIATE_TEST_SUITE_P(Backends, KeychainStoreTest,
                         ::testing::Values(Backend{"memory",
                                                   [](const std::filesystem::path&) {
                                                     return KeychainStore::inMemory();
                                                   }},
                                           Backend{"sqlite",
                                                   [](const std::filesystem::path& dir) {
                                                     return KeychainStore::openFile(dir);
                                                   }}),
                         [](const auto& backend) { return std::string(backend.param.name); });

TEST(SqliteKeychainStoreTest, ReopenedFileKeepsItemsAndKeys) {
  testing::TemporaryDirectory dir;
  {
    auto store = KeychainStore::openFile(dir.path());
    ASSERT_EQ(store->add(item("svc", "a", "kept")), errSecSuccess);
    ASSERT_EQ(store->storeKey(KeychainKey{"tag", KeychainKeyType::rsa, KeychainKeyClass::publicKey,
                                          2048, std::nullopt, bytes("der")}),
              errSecSuccess);
  }
  auto reopened = KeychainStore::openFile(dir.path());
  std::vector<KeychainItem> found;
  ASSERT_EQ(reopened->copyMatching(query("svc", "a"), found), errSecSuccess);
  EXPECT_EQ(found[0].data, bytes("kept"));
  KeychainKey key;
  ASSERT_EQ(reopened->loadKey("tag", std::nullopt, key), errSecSuccess);
  EXPECT_EQ(key.keySizeInBits, 2048);
}

TEST(SqliteKeychainStoreTest, UnusableDirectoryGivesNull) {
  testing::TemporaryDirectory dir;
  const auto blocker = dir.path() / "file";
  ASSERT_TRUE(std::filesystem::create_directory(blocker));
  std::filesystem::remove(blocker);
  { std::ofstream(blocker) << "not a directory"; }
  EXPECT_EQ(KeychainStore::openFile(blocker / "sub"), nullptr);
}

}  // namespace
}  // namespace vorn

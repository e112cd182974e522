// KeychainItems on a store handed to it: its own cache, items read again on request, and the
// base application identifier and the probes on the same stores.
#include <gtest/gtest.h>

#include "storage/GivenStores.hpp"
#include "vorn/storage/keychain/KeyChainWrapper.hpp"
#include "vorn/storage/keychain/KeychainAccess.hpp"
#include "vorn/storage/keychain/VORNCrypto.hpp"
#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"

namespace vorn {
namespace {

KeychainData bytes(std::string_view text) {
  return KeychainData(text.begin(), text.end());
}

TEST(KeychainItemsOnGivenStores, ItemsAreSharedPerCacheAndReadAgainOnRequest) {
  test::UntouchedPlatform platform;
  test::GivenStores stores;
  KeychainItems items(stores.keychain);
  const auto item = items.item("svc");
  EXPECT_EQ(items.item("svc"), item);
  EXPECT_NE(KeychainItems(stores.keychain).item("svc"), item) << "each instance has its cache";
  ASSERT_EQ(stores.keychain->add(KeychainItem{"svc", std::nullopt, std::nullopt, bytes("new"), {}}),
            errSecSuccess);
  EXPECT_FALSE(item->valueData()) << "the cache is the truth for reads";
  const auto fresh = items.readItem("svc");
  ASSERT_TRUE(fresh.isFound());
  EXPECT_EQ(fresh.value(), item);
  EXPECT_EQ(item->valueData(), bytes("new"));
  EXPECT_TRUE(platform.untouched());
}

TEST(KeychainItemsOnGivenStores, AFailedReadIsReportedAndNotCached) {
  auto store = std::make_shared<testing::FaultyKeychainStore>();
  ASSERT_EQ(store->add(KeychainItem{"svc", std::nullopt, std::nullopt, bytes("v"), {}}),
            errSecSuccess);
  KeychainItems items(store);
  store->failNext(testing::KeychainOperation::copyMatching, errSecNotAvailable);
  const auto failed = items.readItem("svc");
  ASSERT_TRUE(failed.isError());
  EXPECT_EQ(failed.status(), errSecNotAvailable);
  const auto item = items.item("svc");
  EXPECT_EQ(item->readValueData().value(), bytes("v"));
  EXPECT_EQ(item->readStatus(), errSecSuccess);
}

TEST(KeychainItemsOnGivenStores, BaseAppIdentifierIsMadeOnceInTheGivenDefaults) {
  test::UntouchedPlatform platform;
  test::GivenStores stores;
  const std::string made = test::Launch(stores).baseAppIdentifier->baseAppIdentifier();
  EXPECT_EQ(made.size(), 36u);
  EXPECT_EQ(stores.defaults->stringFor("", kSimulatorBaseAppIdentifierKey), made);
  const test::Launch later(stores);
  EXPECT_EQ(later.baseAppIdentifier->baseAppIdentifier(), made);
  EXPECT_FALSE(later.baseAppIdentifier->configuredThisLaunch());
  EXPECT_TRUE(platform.untouched());
}

TEST(KeychainItemsOnGivenStores, ProbesAndMigrationRunOnTheGivenStores) {
  test::UntouchedPlatform platform;
  test::GivenStores stores;
  const test::Launch launch(stores);
  const KeychainAccess access(launch.items, launch.baseAppIdentifier, stores.defaults);
  EXPECT_TRUE(access.checkWriteAccess(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly));
  EXPECT_TRUE(access.checkReadAccess());
  EXPECT_TRUE(access.migrateKeychainAccessibilityIfNeeded());
  EXPECT_TRUE(stores.defaults->boolFor("", kAccessibilityMigratedKey));
  const auto services = access.keychainServiceList();
  ASSERT_EQ(services.size(), 4u);
  EXPECT_EQ(services[1], "com.quorvantis.keystore.generatedKeystoreEncryptionKeyId_" +
                             launch.baseAppIdentifier->baseAppIdentifier());
  EXPECT_TRUE(platform.untouched());
}

TEST(KeychainItemsOnGivenStores, MigrationWaitsForAReadableIdentifier) {
  test::GivenStores stores;
  auto defaults = std::make_shared<testing::FaultyDefaultsStore>(stores.defaults);
  const auto items = std::make_shared<KeychainItems>(stores.keychain);
  const KeychainAccess access(items, std::make_shared<BaseAppIdentifier>(defaults, items),
                              defaults);
  defaults->setFailReads(true);
  EXPECT_FALSE(access.migrateKeychainAccessibilityIfNeeded());
  defaults->setFailReads(false);
  EXPECT_FALSE(defaults->boolFor("", kAccessibilityMigratedKey));
  EXPECT_TRUE(access.migrateKeychainAccessibilityIfNeeded());
}

}  // namespace
}  // namespace vorn

// The key store on stores handed to it: keys live in those stores only, survive a new launch
// on them, and two installations never share a key.
#include <gtest/gtest.h>

#include "storage/GivenStores.hpp"
#include "vorn/storage/keystore/VORNSecureEncryptionKey.hpp"
#include "vorn/storage/prefs/EncryptionManager.hpp"

namespace vorn {
namespace {

TEST(KeyStoreOnGivenStores, KeysLiveInTheGivenStoresAndSurviveANewLaunch) {
  test::UntouchedPlatform platform;
  test::GivenStores stores;
  const auto first = test::Launch(stores).keyStore->retrieveKeyWithLabel("push", true);
  ASSERT_TRUE(first);
  const test::Launch again(stores);
  const auto second = again.keyStore->retrieveKeyWithLabel("push", false);
  ASSERT_TRUE(second);
  EXPECT_TRUE(second->isEqual(*first));
  EXPECT_TRUE(VORNSecureEncryptionKey::retrieveKey(*stores.keychain, kDefaultSecureKeyLabel));
  EXPECT_TRUE(platform.untouched());
}

TEST(KeyStoreOnGivenStores, TwoInstallationsHaveTheirOwnKeys) {
  test::UntouchedPlatform platform;
  test::GivenStores one;
  test::GivenStores other;
  const auto oneKey = test::Launch(one).keyStore->retrieveKeyWithLabel("cdp", true);
  const auto otherKey = test::Launch(other).keyStore->retrieveKeyWithLabel("cdp", true);
  ASSERT_TRUE(oneKey && otherKey);
  EXPECT_FALSE(oneKey->isEqual(*otherKey));
  EXPECT_NE(test::Launch(one).baseAppIdentifier->baseAppIdentifier(),
            test::Launch(other).baseAppIdentifier->baseAppIdentifier());
  EXPECT_TRUE(platform.untouched());
}

TEST(KeyStoreOnGivenStores, AModulesEncryptionManagerUsesTheGivenKeyStore) {
  test::UntouchedPlatform platform;
  test::GivenStores stores;
  const test::Launch launch(stores);
  const EncryptionManager manager(ModuleName::push, launch.keyStore);
  const auto sealed = manager.encrypt("text");
  ASSERT_TRUE(sealed);
  const EncryptionManager later(ModuleName::push, test::Launch(stores).keyStore);
  EXPECT_EQ(later.decrypt(*sealed), "text");
  EXPECT_TRUE(platform.untouched());
}

TEST(KeyStoreOnGivenStores, AKeyStoreThatCouldNotStartTriesAgainOnTheNextCall) {
  test::GivenStores stores;
  auto faulty = std::make_shared<testing::FaultyKeychainStore>(stores.keychain);
  faulty->failNext(testing::KeychainOperation::copyMatching, errSecInteractionNotAllowed);
  const auto items = std::make_shared<KeychainItems>(faulty);
  VORNKeyStoreManager manager(items, std::make_shared<BaseAppIdentifier>(stores.defaults, items));
  EXPECT_EQ(faulty->calls(testing::KeychainOperation::storeKey), 0) << "nothing made blind";
  EXPECT_EQ(faulty->calls(testing::KeychainOperation::deleteKey), 0);
  ASSERT_TRUE(manager.retrieveKeyWithLabel("cdp", true));
  EXPECT_EQ(faulty->calls(testing::KeychainOperation::storeKey), 2) << "one pair, once";
}

TEST(KeyStoreOnGivenStores, AModulesManagerAsksAgainForAKeyItCouldNotGet) {
  test::GivenStores stores;
  auto faulty = std::make_shared<testing::FaultyKeychainStore>(stores.keychain);
  const auto items = std::make_shared<KeychainItems>(faulty);
  auto keyStore = std::make_shared<VORNKeyStoreManager>(
      items, std::make_shared<BaseAppIdentifier>(stores.defaults, items));
  ASSERT_TRUE(keyStore->retrieveKeyWithLabel("push", true));
  faulty->failNext(testing::KeychainOperation::exclusively, errSecNotAvailable);
  const EncryptionManager manager(ModuleName::push, keyStore);
  const auto sealed = manager.encrypt("later");
  ASSERT_TRUE(sealed);
  EXPECT_EQ(manager.decrypt(*sealed), "later");
  EXPECT_TRUE(manager.encryptionKey()->isEqual(*keyStore->retrieveKeyWithLabel("push", false)));
}

}  // namespace
}  // namespace vorn

#include <gtest/gtest.h>

#include "storage/CountingKeychain.hpp"
#include "vorn/storage/crypto/VORNSDKCryptoUtils.hpp"
#include "vorn/storage/keychain/VORNCrypto.hpp"
#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"
#include "vorn/storage/keystore/VORNKeyStoreManager.hpp"
#include "vorn/storage/keystore/VORNSecureEncryptionKey.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

class KeyStoreManager : public ::testing::Test {
 protected:
  void SetUp() override { keychain_ = cryptotest::installCountingPlatform(); }

  std::optional<Bytes> storeItem() {
    VORNGeneratedKeyStore names;
    return VORNKeychainItemWrapper::itemWithIdentifier(names.storeKeychainIdentifier())
        ->valueData();
  }

  std::shared_ptr<cryptotest::CountingKeychain> keychain_;
};

TEST_F(KeyStoreManager, StartsWithTheDefaultSecureKeyStoreKey) {
  auto& manager = VORNKeyStoreManager::sharedInstance();
  const auto key = manager.generatedKeyStore().keyStoreKey();
  ASSERT_TRUE(key);
  const auto* secure = dynamic_cast<const VORNSecureEncryptionKey*>(key->encryptionKey().get());
  ASSERT_TRUE(secure);
  EXPECT_EQ(secure->label(), "default");
  EXPECT_TRUE(VORNSDKCryptoUtils::getECPrivateKeyRefWithName("default"));
  // The key item is archived under its names, which end in the base application identifier.
  const std::string base = VORNCrypto::baseAppIdentifier();
  EXPECT_EQ(base.size(), 36u);
  EXPECT_EQ(manager.generatedKeyStore().encryptionKeyKeychainIdentifier(),
            "com.quorvantis.keystore.generatedKeystoreEncryptionKeyId_" + base);
  EXPECT_EQ(manager.generatedKeyStore().storeKeychainIdentifier(),
            "com.quorvantis.keystore.generatedKeystoreKeychainId_" + base);
  const auto reread = VORNKeyStoreKey::fromKeyChain(
      manager.generatedKeyStore().encryptionKeyKeychainIdentifier(),
      "com.quorvantis.keystore.generatedKeystoreEncryptionKeyDataArchive");
  ASSERT_TRUE(reread);
  EXPECT_TRUE(reread->isEqual(*key));
}

TEST_F(KeyStoreManager, AutoCreatesOnceAndTheSecondRetrievalWritesNothing) {
  auto& manager = VORNKeyStoreManager::sharedInstance();
  const auto first = manager.retrieveKeyWithLabel("push", true);
  ASSERT_TRUE(first);
  EXPECT_EQ(first->key().size(), 32u);
  EXPECT_EQ(first->initializationVector().size(), 16u);
  const int writes = keychain_->writes;
  const auto second = manager.retrieveKeyWithLabel("push", true);
  ASSERT_TRUE(second);
  EXPECT_TRUE(second->isEqual(*first));
  EXPECT_EQ(keychain_->writes, writes);
  EXPECT_TRUE(manager.keyWithLabelExists("push"));
  EXPECT_EQ(manager.keyLabelForBaseLabel("push"), "push__Generated");
  // The store item is encrypted: nothing of the key appears in it.
  const auto stored = storeItem();
  ASSERT_TRUE(stored);
  EXPECT_EQ(std::search(stored->begin(), stored->end(), first->key().begin(), first->key().end()),
            stored->end());
}

TEST_F(KeyStoreManager, UnknownLabelWithoutAutoCreationGivesNullAndWritesNothing) {
  auto& manager = VORNKeyStoreManager::sharedInstance();
  const int writes = keychain_->writes;
  EXPECT_FALSE(manager.retrieveKeyWithLabel("cdp", false));
  EXPECT_FALSE(manager.retrieveKeyWithLabel(std::nullopt, true));
  EXPECT_EQ(keychain_->writes, writes);
}

TEST_F(KeyStoreManager, ModulesGetDifferentKeysAndRemovalForgetsOne) {
  auto& manager = VORNKeyStoreManager::sharedInstance();
  const auto push = manager.retrieveKeyWithLabel("push", true);
  const auto cdp = manager.retrieveKeyWithLabel("cdp", true);
  ASSERT_TRUE(push && cdp);
  EXPECT_FALSE(push->isEqual(*cdp));
  manager.removeKeyWithLabel("cdp");
  EXPECT_FALSE(manager.keyWithLabelExists("cdp"));
  EXPECT_TRUE(manager.retrieveKeyWithLabel("push", false)->isEqual(*push));
}

TEST_F(KeyStoreManager, PlainKeyStoreKeyIsSwitchedToSecureAndEntriesSurvive) {
  // An older installation: a plain symmetric key-store key and a dictionary under it.
  VORNGeneratedKeyStore older;
  const auto plain = VORNKeyStoreKey::createKey();
  ASSERT_EQ(plain->toKeyChain(older.encryptionKeyKeychainIdentifier(),
                              older.encryptionKeyDataArchiveKey()),
            errSecSuccess);
  const auto entry = VORNKeyStoreKey::createKey();
  older.setKeyStoreDictionary(KeyStoreDictionary{{"push__Generated", entry}}, plain);

  auto& manager = VORNKeyStoreManager::sharedInstance();
  const auto current = manager.generatedKeyStore().keyStoreKey();
  ASSERT_TRUE(current);
  EXPECT_TRUE(dynamic_cast<const VORNSecureEncryptionKey*>(current->encryptionKey().get()));
  const auto survived = manager.retrieveKeyWithLabel("push", false);
  ASSERT_TRUE(survived);
  EXPECT_TRUE(survived->isEqual(*entry->encryptionKey()));
  // The store was re-encrypted: the old key no longer opens it.
  EXPECT_FALSE(older.decryptDictionaryData(*storeItem(), plain));
}

TEST_F(KeyStoreManager, UndecryptableStoreIsReplacedByOneWithTheNewKeyOnly) {
  auto& manager = VORNKeyStoreManager::sharedInstance();
  const auto push = manager.retrieveKeyWithLabel("push", true);
  ASSERT_TRUE(manager.retrieveKeyWithLabel("cdp", true));
  VORNKeychainItemWrapper::itemWithIdentifier(manager.generatedKeyStore().storeKeychainIdentifier())
      ->setValueData(Bytes(200, 0x42));

  const auto fresh = manager.retrieveKeyWithLabel("push", true);
  ASSERT_TRUE(fresh);
  EXPECT_FALSE(fresh->isEqual(*push));
  const auto dictionary = manager.generatedKeyStore().keyStoreDictionary();
  ASSERT_TRUE(dictionary);
  EXPECT_EQ(dictionary->size(), 1u);
  EXPECT_EQ(dictionary->count("push__Generated"), 1u);
}

TEST_F(KeyStoreManager, ReplacingTheKeyOfAnUndecryptableStoreDeletesTheStore) {
  auto sink = testing::CaptureLogSink::install();
  auto& manager = VORNKeyStoreManager::sharedInstance();
  ASSERT_TRUE(manager.retrieveKeyWithLabel("push", true));
  auto& store = manager.generatedKeyStore();
  VORNKeychainItemWrapper::itemWithIdentifier(store.storeKeychainIdentifier())
      ->setValueData(Bytes(64, 0x01));
  store.setKeyStoreKey(VORNKeyStoreKey::createKey());
  EXPECT_TRUE(sink->contains(
      "Could not decrypt key store with existing key store key.  Key store is invalid."));
  EXPECT_FALSE(storeItem());
  EXPECT_FALSE(manager.retrieveKeyWithLabel("push", false));
}

TEST_F(KeyStoreManager, FailedStoreWriteIsLogged) {
  auto sink = testing::CaptureLogSink::install();
  auto& manager = VORNKeyStoreManager::sharedInstance();
  keychain_->failWrites = errSecInteractionNotAllowed;
  // The caller still gets its key for this launch.
  EXPECT_TRUE(manager.retrieveKeyWithLabel("push", true));
  EXPECT_TRUE(sink->contains("Error saving key store to the keychain."));
  EXPECT_EQ(sink->find("Error saving key store to the keychain.")->level, LogLevel::warning);
}

TEST_F(KeyStoreManager, StoredDataRoundTripsUnencrypted) {
  auto& manager = VORNKeyStoreManager::sharedInstance();
  const Bytes data = VORNKeyStoreManager::keyStringToData("payload");
  EXPECT_TRUE(manager.storeData(data, "k", "com.quorvantis.test.item"));
  EXPECT_EQ(manager.dataForKey("k", "com.quorvantis.test.item"), data);
  EXPECT_FALSE(manager.dataForKey("other", "com.quorvantis.test.item"));
  EXPECT_TRUE(manager.removeKeyChainWithID("com.quorvantis.test.item"));
  EXPECT_FALSE(manager.dataForKey("k", "com.quorvantis.test.item"));
}

}  // namespace
}  // namespace vorn

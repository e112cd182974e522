// A key store or defaults read that fails is not "nothing stored": the item layer does not
// remember it as an absent item, the base application identifier is not made again, and the
// key store neither deletes nor replaces its key-store key or its EC pair.
#include <gtest/gtest.h>

#include "vorn/storage/crypto/VORNSDKCryptoUtils.hpp"
#include "vorn/storage/keychain/VORNCrypto.hpp"
#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"
#include "vorn/storage/keystore/VORNKeyStoreManager.hpp"
#include "vorn/storage/keystore/VORNSecureEncryptionKey.hpp"
#include "vorn/testing/FaultyDefaultsStore.hpp"
#include "vorn/testing/FaultyKeychainStore.hpp"
#include "vorn/testing/PlatformInstall.hpp"

namespace vorn {
namespace {

using testing::FaultyDefaultsStore;
using testing::FaultyKeychainStore;
using testing::KeychainOperation;

constexpr std::string_view kBaseId = "11111111-2222-3333-4444-555555555555";

class KeychainReadError : public ::testing::Test {
 protected:
  void SetUp() override {
    defaults_->inner()->setString("", kBaseId, kSimulatorBaseAppIdentifierKey);
    testing::installEphemeralPlatform(keychain_, defaults_);
  }

  std::optional<KeychainData> storedValue(const std::string& service) {
    KeychainQuery query;
    query.service = service;
    query.returnData = true;
    std::vector<KeychainItem> found;
    if (keychain_->inner()->copyMatching(query, found) != errSecSuccess)
      return std::nullopt;
    return found.front().data;
  }

  // An earlier launch's key store: the default EC pair and the key item naming it.
  std::string installEarlierKeyStore() {
    VORNSDKCryptoUtils::createECKeyPairWithName(
        kDefaultSecureKeyLabel, kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly, false);
    const auto secure = VORNSecureEncryptionKey::retrieveKey(kDefaultSecureKeyLabel);
    EXPECT_TRUE(secure);
    const std::string keyItem =
        std::string(kGeneratedKeystoreEncryptionKeyId) + "_" + std::string(kBaseId);
    EXPECT_EQ(
        VORNKeyStoreKey(secure).toKeyChain(keyItem, kGeneratedKeystoreEncryptionKeyDataArchive),
        errSecSuccess);
    VORNKeychainItemWrapper::resetInMemoryKeychainItems();
    return keyItem;
  }

  void expectKeyStoreUntouched(const std::string& keyItem, const KeychainData& keyItemValue) {
    EXPECT_EQ(keychain_->calls(KeychainOperation::deleteKey), 0);
    EXPECT_EQ(keychain_->calls(KeychainOperation::storeKey), 0);
    EXPECT_EQ(storedValue(keyItem), keyItemValue);
  }

  std::shared_ptr<FaultyKeychainStore> keychain_ = std::make_shared<FaultyKeychainStore>();
  std::shared_ptr<FaultyDefaultsStore> defaults_ = std::make_shared<FaultyDefaultsStore>();
};

TEST_F(KeychainReadError, AnItemThatCouldNotBeReadIsReadAgain) {
  keychain_->failNext(KeychainOperation::copyMatching, errSecInteractionNotAllowed, 1, "svc");
  const KeychainData value{'v'};
  ASSERT_EQ(keychain_->inner()->add(KeychainItem{"svc", std::nullopt, std::nullopt, value, {}}),
            errSecSuccess);
  const auto item = VORNKeychainItemWrapper::itemWithIdentifier("svc");
  EXPECT_EQ(item->valueData(), value) << "the failed read was kept as an absent item";
  EXPECT_EQ(VORNKeychainItemWrapper::itemWithIdentifier("svc")->valueData(), value);
}

TEST_F(KeychainReadError, AFailedDefaultsReadMakesNoNewBaseAppIdentifier) {
  defaults_->failNextReads(1, std::string(kSimulatorBaseAppIdentifierKey));
  EXPECT_EQ(VORNCrypto::baseAppIdentifier(), "");
  EXPECT_EQ(defaults_->inner()->stringFor("", kSimulatorBaseAppIdentifierKey), kBaseId);
  EXPECT_EQ(VORNCrypto::baseAppIdentifier(), kBaseId);
  EXPECT_FALSE(VORNCrypto::baseAppIdentifierConfiguredThisLaunch());
}

TEST_F(KeychainReadError, AnUnreadableKeyItemLeavesTheKeyStoreAlone) {
  const std::string keyItem = installEarlierKeyStore();
  const auto keyItemValue = storedValue(keyItem);
  ASSERT_TRUE(keyItemValue);
  const int stores = keychain_->calls(KeychainOperation::storeKey);
  const int deletes = keychain_->calls(KeychainOperation::deleteKey);
  keychain_->failNext(KeychainOperation::copyMatching, errSecNotAvailable, 1, keyItem);
  auto& manager = VORNKeyStoreManager::sharedInstance();
  EXPECT_EQ(keychain_->calls(KeychainOperation::storeKey), stores);
  EXPECT_EQ(keychain_->calls(KeychainOperation::deleteKey), deletes);
  EXPECT_EQ(storedValue(keyItem), keyItemValue);
  const auto key = manager.retrieveKeyWithLabel("push", true);
  ASSERT_TRUE(key) << "read again on the next call";
  EXPECT_EQ(keychain_->calls(KeychainOperation::deleteKey), deletes);
  EXPECT_EQ(storedValue(keyItem), keyItemValue);
}

TEST_F(KeychainReadError, AnUnreadableKeyPairIsNotReplaced) {
  const std::string keyItem = installEarlierKeyStore();
  const auto keyItemValue = storedValue(keyItem);
  const int deletes = keychain_->calls(KeychainOperation::deleteKey);
  keychain_->failNext(KeychainOperation::loadKey, errSecInteractionNotAllowed, 1,
                      std::string(kECPrivateKeyTagPrefix) + ".default");
  auto& manager = VORNKeyStoreManager::sharedInstance();
  manager.retrieveKeyWithLabel("cdp", true);
  EXPECT_EQ(keychain_->calls(KeychainOperation::deleteKey), deletes);
  EXPECT_EQ(storedValue(keyItem), keyItemValue);
  const auto first = manager.retrieveKeyWithLabel("cdp", true);
  ASSERT_TRUE(first);
  EXPECT_TRUE(manager.retrieveKeyWithLabel("cdp", false)->isEqual(*first));
  EXPECT_EQ(keychain_->calls(KeychainOperation::deleteKey), deletes);
}

}  // namespace
}  // namespace vorn

#include "vorn/storage/keystore/VORNKeyStoreManager.hpp"

#include "vorn/platform/KeychainStatus.hpp"
#include "vorn/storage/keystore/VORNSecureEncryptionKey.hpp"

namespace vorn {

VORNKeyStoreManager& VORNKeyStoreManager::sharedInstance() {
  // Never destroyed: a worker thread may still ask for a key while the process exits.
  static VORNKeyStoreManager* const instance = new VORNKeyStoreManager();
  return *instance;
}

VORNKeyStoreManager::VORNKeyStoreManager() {
  initializeKeyStores();
}

void VORNKeyStoreManager::initializeKeyStores() {
  std::lock_guard lock(mutex_);
  generatedKeyStore_ = std::make_shared<VORNGeneratedKeyStore>();
  const auto existing = generatedKeyStore_->keyStoreKey();
  if (existing)
    switchToSecureKeyIfNeeded(existing);
  else
    generatedKeyStore_->setKeyStoreKey(createDefaultKey());
}

std::shared_ptr<VORNKeyStoreKey> VORNKeyStoreManager::createDefaultKey() {
  auto secure = VORNSecureEncryptionKey::createKey(kDefaultSecureKeyLabel);
  return secure ? std::make_shared<VORNKeyStoreKey>(std::move(secure)) : nullptr;
}

void VORNKeyStoreManager::switchToSecureKeyIfNeeded(
    const std::shared_ptr<VORNKeyStoreKey>& keyStoreKey) {
  std::lock_guard lock(mutex_);
  if (keyStoreKey &&
      dynamic_cast<const VORNSecureEncryptionKey*>(keyStoreKey->encryptionKey().get()))
    return;
  generatedKeyStore_->setKeyStoreKey(createDefaultKey());
}

std::shared_ptr<VORNEncryptionKey> VORNKeyStoreManager::retrieveKeyWithLabel(
    std::optional<std::string_view> label, bool autoCreate) {
  if (!label)
    return nullptr;
  std::lock_guard lock(mutex_);
  const std::string fullLabel = keyLabelForBaseLabel(*label);
  const auto dictionary = generatedKeyStore_->keyStoreDictionary();
  if (dictionary) {
    const auto it = dictionary->find(fullLabel);
    if (it != dictionary->end() && it->second)
      return it->second->encryptionKey();
  }
  if (!autoCreate)
    return nullptr;
  auto created = VORNKeyStoreKey::createKey();
  if (!created)
    return nullptr;
  storeKeyStoreKey(created, *label);
  return created->encryptionKey();
}

std::shared_ptr<VORNEncryptionKey> VORNKeyStoreManager::retrieveKeyWithLabel(
    std::string_view label, std::string_view keychainId) {
  std::lock_guard lock(mutex_);
  const auto key = VORNKeyStoreKey::fromKeyChain(keychainId, keyLabelForBaseLabel(label));
  return key ? key->encryptionKey() : nullptr;
}

void VORNKeyStoreManager::storeKey(const std::shared_ptr<VORNEncryptionKey>& key,
                                   std::string_view label) {
  if (key)
    storeKeyStoreKey(std::make_shared<VORNKeyStoreKey>(key), label);
}

void VORNKeyStoreManager::removeKeyWithLabel(std::string_view label) {
  std::lock_guard lock(mutex_);
  auto dictionary = generatedKeyStore_->keyStoreDictionary();
  if (dictionary && dictionary->erase(keyLabelForBaseLabel(label)) > 0)
    generatedKeyStore_->setKeyStoreDictionary(dictionary);
}

bool VORNKeyStoreManager::keyWithLabelExists(std::string_view label) {
  return retrieveKeyWithLabel(label, false) != nullptr;
}

bool VORNKeyStoreManager::keyExists(std::string_view label, std::string_view keychainId) {
  return retrieveKeyWithLabel(label, keychainId) != nullptr;
}

void VORNKeyStoreManager::storeKeyStoreKey(const std::shared_ptr<VORNKeyStoreKey>& key,
                                           std::string_view label) {
  std::lock_guard lock(mutex_);
  KeyStoreDictionary dictionary =
      generatedKeyStore_->keyStoreDictionary().value_or(KeyStoreDictionary{});
  dictionary[keyLabelForBaseLabel(label)] = key;
  generatedKeyStore_->setKeyStoreDictionary(dictionary);
}

bool VORNKeyStoreManager::storeData(ByteView data, std::string_view key,
                                    std::string_view keychainId) {
  std::lock_guard lock(mutex_);
  return VORNKeyStoreKey::dataToKeyChain(keychainId, key, data) == errSecSuccess;
}

std::optional<Bytes> VORNKeyStoreManager::dataForKey(std::string_view key,
                                                     std::string_view keychainId) {
  std::lock_guard lock(mutex_);
  return VORNKeyStoreKey::dataFromKeyChain(keychainId, key);
}

bool VORNKeyStoreManager::removeKeyChainWithID(std::string_view keychainId) {
  std::lock_guard lock(mutex_);
  return VORNKeyStoreKey::removeKeyChainItem(keychainId);
}

std::string VORNKeyStoreManager::keyLabelForBaseLabel(std::string_view label) const {
  return generatedKeyStore_->keyLabelForString(label);
}

Bytes VORNKeyStoreManager::keyStringToData(std::string_view text) {
  return Bytes(text.begin(), text.end());
}

}  // namespace vorn

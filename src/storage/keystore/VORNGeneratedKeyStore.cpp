#include "vorn/storage/keystore/VORNGeneratedKeyStore.hpp"

#include "vorn/logging/Log.hpp"
#include "vorn/platform/KeychainStatus.hpp"

namespace vorn {

std::string VORNGeneratedKeyStore::storeKeychainIdentifier() const {
  return buildUniqueKeychainId(kGeneratedKeystoreKeychainId);
}

std::string VORNGeneratedKeyStore::storeDataArchiveKey() const {
  return std::string(kGeneratedKeystoreDataArchive);
}

std::string VORNGeneratedKeyStore::encryptionKeyKeychainIdentifier() const {
  return buildUniqueKeychainId(kGeneratedKeystoreEncryptionKeyId);
}

std::string VORNGeneratedKeyStore::encryptionKeyDataArchiveKey() const {
  return std::string(kGeneratedKeystoreEncryptionKeyDataArchive);
}

std::shared_ptr<VORNKeyStoreKey> VORNGeneratedKeyStore::keyStoreKey() {
  std::lock_guard lock(mutex_);
  if (!keyStoreKeyRead_) {
    keyStoreKey_ = VORNKeyStoreKey::fromKeyChain(encryptionKeyKeychainIdentifier(),
                                                 encryptionKeyDataArchiveKey());
    keyStoreKeyRead_ = true;
  }
  return keyStoreKey_;
}

void VORNGeneratedKeyStore::setKeyStoreKey(std::shared_ptr<VORNKeyStoreKey> key) {
  std::lock_guard lock(mutex_);
  const auto current = keyStoreKey();
  const bool same = current && key ? current->isEqual(*key) : current == key;
  if (same)
    return;
  const auto dictionary = keyStoreDictionaryWithKey(current);
  if (dictionary) {
    setKeyStoreDictionary(dictionary, key);
  } else if (current) {
    VORN_LOG_DEBUG(LoggerCategory::encryption,
                   "Could not decrypt key store with existing key store key.  Key store is "
                   "invalid.");
    setKeyStoreDictionary(std::nullopt, key);
  }
  if (key) {
    if (key->toKeyChain(encryptionKeyKeychainIdentifier(), encryptionKeyDataArchiveKey()) !=
        errSecSuccess)
      VORN_LOG_WARNING(LoggerCategory::encryption, "Error saving key store key to the keychain.");
  } else if (!VORNKeyStoreKey::removeKeyChainItem(encryptionKeyKeychainIdentifier())) {
    VORN_LOG_WARNING(LoggerCategory::encryption, "Error removing key store key from the keychain.");
  }
  keyStoreKey_ = std::move(key);
  keyStoreKeyRead_ = true;
}

std::string VORNGeneratedKeyStore::keyLabelForString(std::string_view text) const {
  return std::string(text) + "__" + std::string(kGeneratedKeyLabelSuffix);
}

}  // namespace vorn

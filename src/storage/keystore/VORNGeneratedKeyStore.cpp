#include "vorn/storage/keystore/VORNGeneratedKeyStore.hpp"

#include "vorn/logging/Log.hpp"
#include "vorn/platform/KeychainStatus.hpp"

namespace vorn {

VORNGeneratedKeyStore::VORNGeneratedKeyStore(std::shared_ptr<KeychainItems> items,
                                             std::shared_ptr<BaseAppIdentifier> baseAppIdentifier)
    : VORNKeyStore(std::move(items), std::move(baseAppIdentifier)) {}

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

ReadResult<std::shared_ptr<VORNKeyStoreKey>> VORNGeneratedKeyStore::readKeyItem() {
  if (const OSStatus names = namesStatus(); names != errSecSuccess)
    return ReadResult<std::shared_ptr<VORNKeyStoreKey>>::error(names);
  return VORNKeyStoreKey::readFromKeyChain(keychainItems(), encryptionKeyKeychainIdentifier(),
                                           encryptionKeyDataArchiveKey());
}

void VORNGeneratedKeyStore::cache(std::shared_ptr<VORNKeyStoreKey> key) {
  std::lock_guard lock(mutex_);
  keyStoreKey_ = std::move(key);
  keyStoreKeyRead_ = true;
}

ReadResult<std::shared_ptr<VORNKeyStoreKey>> VORNGeneratedKeyStore::reloadKeyStoreKey() {
  auto read = readKeyItem();
  if (!read.isError())
    cache(read.isFound() ? read.value() : nullptr);
  return read;
}

ReadResult<std::shared_ptr<VORNKeyStoreKey>> VORNGeneratedKeyStore::readKeyStoreKey() {
  {
    std::lock_guard lock(mutex_);
    if (keyStoreKey_)
      return ReadResult<std::shared_ptr<VORNKeyStoreKey>>::found(keyStoreKey_);
  }
  return reloadKeyStoreKey();
}

std::shared_ptr<VORNKeyStoreKey> VORNGeneratedKeyStore::keyStoreKey() {
  {
    std::lock_guard lock(mutex_);
    if (keyStoreKeyRead_)
      return keyStoreKey_;
  }
  // Read without the store's lock: outside a section, the store may keep this thread waiting
  // while a section elsewhere in the process wants that lock.
  return reloadKeyStoreKey().valueIfFound().value_or(nullptr);
}

void VORNGeneratedKeyStore::setKeyStoreKey(std::shared_ptr<VORNKeyStoreKey> key) {
  replaceKeyStoreKey(std::move(key));
}

bool VORNGeneratedKeyStore::replaceKeyStoreKey(std::shared_ptr<VORNKeyStoreKey> key) {
  bool replaced = false;
  exclusively([&] {
    // What is stored now decides, not the cache: another process may have changed it.
    const auto stored = reloadKeyStoreKey();
    const auto current = stored.isFound() ? stored.value() : nullptr;
    const bool same = current && key ? current->isEqual(*key) : current == key;
    if (stored.isError() || same) {
      replaced = same;
      return;
    }
    const auto dictionary = readKeyStoreDictionaryWithKey(current);
    if (dictionary.isError())
      return;
    if (dictionary.isFound()) {
      setKeyStoreDictionary(dictionary.value(), key);
    } else if (current) {
      VORN_LOG_DEBUG(LoggerCategory::encryption,
                     "Could not decrypt key store with existing key store key.  Key store is "
                     "invalid.");
      setKeyStoreDictionary(std::nullopt, key);
    }
    if (key) {
      if (key->toKeyChain(keychainItems(), encryptionKeyKeychainIdentifier(),
                          encryptionKeyDataArchiveKey()) != errSecSuccess)
        VORN_LOG_WARNING(LoggerCategory::encryption, "Error saving key store key to the keychain.");
    } else if (!VORNKeyStoreKey::removeKeyChainItem(keychainItems(),
                                                    encryptionKeyKeychainIdentifier())) {
      VORN_LOG_WARNING(LoggerCategory::encryption,
                       "Error removing key store key from the keychain.");
    }
    cache(std::move(key));
    replaced = true;
  });
  return replaced;
}

std::string VORNGeneratedKeyStore::keyLabelForString(std::string_view text) const {
  return std::string(text) + "__" + std::string(kGeneratedKeyLabelSuffix);
}

}  // namespace vorn

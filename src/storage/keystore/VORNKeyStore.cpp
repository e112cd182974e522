#include "vorn/storage/keystore/VORNKeyStore.hpp"

#include "storage/keystore/KeyArchive.hpp"
#include "storage/keystore/KeyStoreItems.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/storage/keychain/VORNCrypto.hpp"

namespace vorn {

VORNKeyStore::~VORNKeyStore() = default;

std::optional<KeyStoreDictionary> VORNKeyStore::keyStoreDictionary() {
  return keyStoreDictionaryWithKey(keyStoreKey());
}

std::optional<KeyStoreDictionary> VORNKeyStore::keyStoreDictionaryWithKey(
    const std::shared_ptr<VORNKeyStoreKey>& key) {
  const auto data = readItemValue(storeKeychainIdentifier());
  return data ? decryptDictionaryData(*data, key) : std::nullopt;
}

void VORNKeyStore::setKeyStoreDictionary(const std::optional<KeyStoreDictionary>& dictionary) {
  setKeyStoreDictionary(dictionary, keyStoreKey());
}

void VORNKeyStore::setKeyStoreDictionary(const std::optional<KeyStoreDictionary>& dictionary,
                                         const std::shared_ptr<VORNKeyStoreKey>& key) {
  std::lock_guard lock(mutex_);
  if (!dictionary) {
    if (!deleteItem(storeKeychainIdentifier()))
      VORN_LOG_WARNING(LoggerCategory::encryption, "Error removing key store from the keychain.");
    return;
  }
  const auto encrypted = encryptDictionary(*dictionary, key);
  if (!encrypted || writeItemValue(storeKeychainIdentifier(), *encrypted) != errSecSuccess)
    VORN_LOG_WARNING(LoggerCategory::encryption, "Error saving key store to the keychain.");
}

std::optional<Bytes> VORNKeyStore::encryptDictionary(
    const KeyStoreDictionary& dictionary, const std::shared_ptr<VORNKeyStoreKey>& key) const {
  Bytes archived = archiveDictionary(dictionary, storeDataArchiveKey());
  return key ? key->encryptData(archived) : std::optional<Bytes>(std::move(archived));
}

std::optional<KeyStoreDictionary> VORNKeyStore::decryptDictionaryData(
    ByteView data, const std::shared_ptr<VORNKeyStoreKey>& key) const {
  std::optional<Bytes> decrypted;
  if (key) {
    decrypted = key->decryptData(data);
    if (!decrypted)
      return std::nullopt;
  }
  const ByteView archived = decrypted ? ByteView(*decrypted) : data;
  auto unarchived = unarchiveDictionary(archived, storeDataArchiveKey());
  if (!unarchived.opened) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Unable to init unarchiver for key store data. Key store is invalid: " +
                       unarchived.reason + ".");
  }
  return std::move(unarchived.object);
}

std::string VORNKeyStore::buildUniqueKeychainId(std::string_view base) const {
  return std::string(base) + "_" + VORNCrypto::baseAppIdentifier();
}

}  // namespace vorn

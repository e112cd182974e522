#include "vorn/storage/keystore/VORNKeyStore.hpp"

#include "storage/keystore/KeyArchive.hpp"
#include "storage/keystore/KeyStoreItems.hpp"
#include "vorn/logging/Log.hpp"

namespace vorn {

VORNKeyStore::VORNKeyStore() : VORNKeyStore(KeychainItems::shared(), BaseAppIdentifier::shared()) {}

VORNKeyStore::VORNKeyStore(std::shared_ptr<KeychainItems> items,
                           std::shared_ptr<BaseAppIdentifier> baseAppIdentifier)
    : items_(std::move(items)), baseAppIdentifier_(std::move(baseAppIdentifier)) {}

VORNKeyStore::~VORNKeyStore() = default;

OSStatus VORNKeyStore::exclusively(const std::function<void()>& body) {
  return items_->exclusively([&] {
    std::lock_guard lock(mutex_);
    body();
  });
}

OSStatus VORNKeyStore::namesStatus() const {
  const auto base = baseAppIdentifier_->identifier();
  if (base.isFound())
    return errSecSuccess;
  return base.isError() ? base.status() : errSecNotAvailable;
}

ReadResult<std::shared_ptr<VORNKeyStoreKey>> VORNKeyStore::readKeyStoreKey() {
  auto key = keyStoreKey();
  return key ? ReadResult<std::shared_ptr<VORNKeyStoreKey>>::found(std::move(key))
             : ReadResult<std::shared_ptr<VORNKeyStoreKey>>::absent();
}

std::optional<KeyStoreDictionary> VORNKeyStore::keyStoreDictionary() {
  return readKeyStoreDictionary().valueIfFound();
}

std::optional<KeyStoreDictionary> VORNKeyStore::keyStoreDictionaryWithKey(
    const std::shared_ptr<VORNKeyStoreKey>& key) {
  return readKeyStoreDictionaryWithKey(key).valueIfFound();
}

ReadResult<KeyStoreDictionary> VORNKeyStore::readKeyStoreDictionary() {
  const auto key = readKeyStoreKey();
  if (key.isError())
    return ReadResult<KeyStoreDictionary>::error(key.status());
  return readKeyStoreDictionaryWithKey(key.isFound() ? key.value() : nullptr);
}

ReadResult<KeyStoreDictionary> VORNKeyStore::readKeyStoreDictionaryWithKey(
    const std::shared_ptr<VORNKeyStoreKey>& key) {
  if (const OSStatus names = namesStatus(); names != errSecSuccess)
    return ReadResult<KeyStoreDictionary>::error(names);
  const auto data = readItemValue(*items_, storeKeychainIdentifier());
  if (!data.isFound())
    return data.isError() ? ReadResult<KeyStoreDictionary>::error(data.status())
                          : ReadResult<KeyStoreDictionary>::absent();
  return decrypted(data.value(), key);
}

void VORNKeyStore::setKeyStoreDictionary(const std::optional<KeyStoreDictionary>& dictionary) {
  exclusively([&] {
    const auto key = readKeyStoreKey();
    if (key.isError()) {
      VORN_LOG_WARNING(LoggerCategory::encryption, "Error saving key store to the keychain.");
      return;
    }
    setKeyStoreDictionary(dictionary, key.isFound() ? key.value() : nullptr);
  });
}

void VORNKeyStore::setKeyStoreDictionary(const std::optional<KeyStoreDictionary>& dictionary,
                                         const std::shared_ptr<VORNKeyStoreKey>& key) {
  exclusively([&] {
    const bool named = namesStatus() == errSecSuccess;
    if (!dictionary) {
      if (!named || !deleteItem(*items_, storeKeychainIdentifier()))
        VORN_LOG_WARNING(LoggerCategory::encryption, "Error removing key store from the keychain.");
      return;
    }
    const auto encrypted = encryptDictionary(*dictionary, key);
    if (!named || !encrypted ||
        writeItemValue(*items_, storeKeychainIdentifier(), *encrypted) != errSecSuccess)
      VORN_LOG_WARNING(LoggerCategory::encryption, "Error saving key store to the keychain.");
  });
}

std::optional<Bytes> VORNKeyStore::encryptDictionary(
    const KeyStoreDictionary& dictionary, const std::shared_ptr<VORNKeyStoreKey>& key) const {
  Bytes archived = archiveDictionary(dictionary, storeDataArchiveKey());
  return key ? key->encryptData(archived) : std::optional<Bytes>(std::move(archived));
}

std::optional<KeyStoreDictionary> VORNKeyStore::decryptDictionaryData(
    ByteView data, const std::shared_ptr<VORNKeyStoreKey>& key) const {
  return decrypted(data, key).valueIfFound();
}

ReadResult<KeyStoreDictionary> VORNKeyStore::decrypted(
    ByteView data, const std::shared_ptr<VORNKeyStoreKey>& key) const {
  std::optional<Bytes> decrypted;
  if (key) {
    decrypted = key->decryptData(data);
    if (!decrypted)
      return ReadResult<KeyStoreDictionary>::absent();
  }
  const ByteView archived = decrypted ? ByteView(*decrypted) : data;
  auto unarchived = unarchiveDictionary(archived, storeDataArchiveKey(), *items_->store());
  if (!unarchived.opened) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Unable to init unarchiver for key store data. Key store is invalid: " +
                       unarchived.reason + ".");
  }
  if (unarchived.lookupStatus != errSecSuccess)
    return ReadResult<KeyStoreDictionary>::error(unarchived.lookupStatus);
  return unarchived.object ? ReadResult<KeyStoreDictionary>::found(std::move(*unarchived.object))
                           : ReadResult<KeyStoreDictionary>::absent();
}

std::string VORNKeyStore::buildUniqueKeychainId(std::string_view base) const {
  return std::string(base) + "_" + baseAppIdentifier_->baseAppIdentifier();
}

}  // namespace vorn

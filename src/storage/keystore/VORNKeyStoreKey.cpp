#include "vorn/storage/keystore/VORNKeyStoreKey.hpp"

#include "storage/keystore/KeyArchive.hpp"
#include "storage/keystore/KeyStoreItems.hpp"
#include "vorn/logging/Log.hpp"

namespace vorn {

VORNKeyStoreKey::VORNKeyStoreKey(std::shared_ptr<VORNEncryptionKey> encryptionKey)
    : encryptionKey_(std::move(encryptionKey)) {}

std::shared_ptr<VORNKeyStoreKey> VORNKeyStoreKey::createKey() {
  auto key = VORNEncryptionKey::createKey();
  return key ? std::make_shared<VORNKeyStoreKey>(std::move(key)) : nullptr;
}

std::shared_ptr<VORNKeyStoreKey> VORNKeyStoreKey::fromKeyChain(std::string_view identifier,
                                                               std::string_view archiverKey) {
  return readFromKeyChain(*KeychainItems::shared(), identifier, archiverKey)
      .valueIfFound()
      .value_or(nullptr);
}

ReadResult<std::shared_ptr<VORNKeyStoreKey>> VORNKeyStoreKey::readFromKeyChain(
    KeychainItems& items, std::string_view identifier, std::string_view archiverKey) {
  using Result = ReadResult<std::shared_ptr<VORNKeyStoreKey>>;
  const auto data = readItemValue(items, identifier);
  if (!data.isFound())
    return data.isError() ? Result::error(data.status()) : Result::absent();
  auto unarchived = unarchiveKeyStoreKey(data.value(), archiverKey, *items.store());
  if (!unarchived.opened) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Failed to init unarchiver for key store key data: " + unarchived.reason + ".");
  }
  if (unarchived.lookupStatus != errSecSuccess)
    return Result::error(unarchived.lookupStatus);
  return unarchived.object ? Result::found(std::move(unarchived.object)) : Result::absent();
}

std::int32_t VORNKeyStoreKey::toKeyChain(std::string_view identifier,
                                         std::string_view archiverKey) const {
  return toKeyChain(*KeychainItems::shared(), identifier, archiverKey);
}

std::int32_t VORNKeyStoreKey::toKeyChain(KeychainItems& items, std::string_view identifier,
                                         std::string_view archiverKey) const {
  return writeItemValue(items, identifier, archiveKeyStoreKey(*this, archiverKey));
}

std::int32_t VORNKeyStoreKey::dataToKeyChain(std::string_view identifier,
                                             std::string_view archiverKey, ByteView value) {
  return dataToKeyChain(*KeychainItems::shared(), identifier, archiverKey, value);
}

std::int32_t VORNKeyStoreKey::dataToKeyChain(KeychainItems& items, std::string_view identifier,
                                             std::string_view archiverKey, ByteView value) {
  return writeItemValue(items, identifier, archiveData(value, archiverKey));
}

std::optional<Bytes> VORNKeyStoreKey::dataFromKeyChain(std::string_view identifier,
                                                       std::string_view archiverKey) {
  return readDataFromKeyChain(*KeychainItems::shared(), identifier, archiverKey).valueIfFound();
}

ReadResult<Bytes> VORNKeyStoreKey::readDataFromKeyChain(KeychainItems& items,
                                                        std::string_view identifier,
                                                        std::string_view archiverKey) {
  const auto data = readItemValue(items, identifier);
  if (!data.isFound())
    return data;
  auto unarchived = unarchiveData(data.value(), archiverKey).object;
  return unarchived ? ReadResult<Bytes>::found(std::move(*unarchived))
                    : ReadResult<Bytes>::absent();
}

bool VORNKeyStoreKey::removeKeyChainItem(std::string_view identifier) {
  return removeKeyChainItem(*KeychainItems::shared(), identifier);
}

bool VORNKeyStoreKey::removeKeyChainItem(KeychainItems& items, std::string_view identifier) {
  return deleteItem(items, identifier);
}

std::optional<Bytes> VORNKeyStoreKey::encryptData(ByteView data) const {
  return encryptionKey_ ? encryptionKey_->encryptData(data) : std::nullopt;
}

std::optional<Bytes> VORNKeyStoreKey::decryptData(ByteView data) const {
  return encryptionKey_ ? encryptionKey_->decryptData(data) : std::nullopt;
}

bool VORNKeyStoreKey::isEqual(const VORNKeyStoreKey& other) const {
  if (!encryptionKey_ || !other.encryptionKey_)
    return encryptionKey_ == other.encryptionKey_;
  return encryptionKey_->isEqual(*other.encryptionKey_);
}

}  // namespace vorn

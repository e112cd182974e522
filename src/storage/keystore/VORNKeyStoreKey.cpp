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
  const auto data = readItemValue(identifier);
  if (!data)
    return nullptr;
  auto unarchived = unarchiveKeyStoreKey(*data, archiverKey);
  if (!unarchived.opened) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Failed to init unarchiver for key store key data: " + unarchived.reason + ".");
  }
  return std::move(unarchived.object);
}

std::int32_t VORNKeyStoreKey::toKeyChain(std::string_view identifier,
                                         std::string_view archiverKey) const {
  return writeItemValue(identifier, archiveKeyStoreKey(*this, archiverKey));
}

std::int32_t VORNKeyStoreKey::dataToKeyChain(std::string_view identifier,
                                             std::string_view archiverKey, ByteView value) {
  return writeItemValue(identifier, archiveData(value, archiverKey));
}

std::optional<Bytes> VORNKeyStoreKey::dataFromKeyChain(std::string_view identifier,
                                                       std::string_view archiverKey) {
  const auto data = readItemValue(identifier);
  return data ? unarchiveData(*data, archiverKey).object : std::nullopt;
}

bool VORNKeyStoreKey::removeKeyChainItem(std::string_view identifier) {
  return deleteItem(identifier);
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

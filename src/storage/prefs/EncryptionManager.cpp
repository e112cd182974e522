#include "vorn/storage/prefs/EncryptionManager.hpp"

#include <utility>

#include "vorn/storage/crypto/UnicodeEncoding.hpp"
#include "vorn/storage/keystore/VORNKeyStoreManager.hpp"

namespace vorn {

EncryptionManager::EncryptionManager(ModuleName module)
    : encryptionKey_(
          VORNKeyStoreManager::sharedInstance().retrieveKeyWithLabel(rawValue(module), true)) {}

EncryptionManager::EncryptionManager(std::shared_ptr<const VORNEncryptionKey> key)
    : encryptionKey_(std::move(key)) {}

std::optional<Bytes> EncryptionManager::encrypt(std::string_view string) const {
  if (!encryptionKey_) {
    return std::nullopt;
  }
  const std::optional<Bytes> plain = encodeUnicode(string);
  if (!plain) {
    return std::nullopt;
  }
  return encryptionKey_->encryptData(*plain);
}

std::optional<std::string> EncryptionManager::decrypt(ByteView stringData) const {
  if (!encryptionKey_) {
    return std::nullopt;
  }
  const std::optional<Bytes> plain = encryptionKey_->decryptData(stringData);
  if (!plain) {
    return std::nullopt;
  }
  return decodeUnicode(*plain);
}

}  // namespace vorn

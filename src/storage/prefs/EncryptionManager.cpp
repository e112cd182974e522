#include "vorn/storage/prefs/EncryptionManager.hpp"

#include <utility>

#include "vorn/storage/crypto/UnicodeEncoding.hpp"

namespace vorn {

EncryptionManager::EncryptionManager(ModuleName module)
    : EncryptionManager(module, VORNKeyStoreManager::shared()) {}

EncryptionManager::EncryptionManager(ModuleName module,
                                     std::shared_ptr<VORNKeyStoreManager> keyStore)
    : module_(module), keyStore_(std::move(keyStore)) {
  encryptionKey();
}

EncryptionManager::EncryptionManager(std::shared_ptr<const VORNEncryptionKey> key)
    : encryptionKey_(std::move(key)) {}

std::shared_ptr<const VORNEncryptionKey> EncryptionManager::encryptionKey() const {
  {
    std::lock_guard lock(mutex_);
    if (encryptionKey_ || !module_ || !keyStore_)
      return encryptionKey_;
  }
  // Asked without the lock: the key store may wait for another process, and the key it gives
  // is the module's one key whoever asks first.
  auto key = keyStore_->retrieveKeyWithLabel(rawValue(*module_), true);
  std::lock_guard lock(mutex_);
  if (!encryptionKey_)
    encryptionKey_ = std::move(key);
  return encryptionKey_;
}

bool EncryptionManager::isKeyless() const {
  std::lock_guard lock(mutex_);
  return !encryptionKey_ && (!module_ || !keyStore_);
}

std::optional<Bytes> EncryptionManager::encrypt(std::string_view string) const {
  const auto key = encryptionKey();
  if (!key) {
    return std::nullopt;
  }
  const std::optional<Bytes> plain = encodeUnicode(string);
  if (!plain) {
    return std::nullopt;
  }
  return key->encryptData(*plain);
}

std::optional<std::string> EncryptionManager::decrypt(ByteView stringData) const {
  const auto key = encryptionKey();
  if (!key) {
    return std::nullopt;
  }
  const std::optional<Bytes> plain = key->decryptData(stringData);
  if (!plain) {
    return std::nullopt;
  }
  return decodeUnicode(*plain);
}

}  // namespace vorn

#include "vorn/storage/crypto/VORNEncryptionKey.hpp"

#include <string>
#include <vector>

#include "storage/crypto/KeySecrets.hpp"
#include "vorn/logging/VORNSdkLogger.hpp"
#include "vorn/storage/crypto/Base64.hpp"
#include "vorn/storage/crypto/VORNSDKCryptoUtils.hpp"

namespace vorn {
namespace {

constexpr std::size_t kIVLength = 16;

}  // namespace

VORNEncryptionKey::VORNEncryptionKey(Bytes key, Bytes initializationVector)
    : key_(std::move(key)), initializationVector_(std::move(initializationVector)) {
  std::vector<std::string> secrets;
  detail::addKeySecrets(secrets, key_);
  detail::addKeySecrets(secrets, initializationVector_);
  VORNSdkLogger::shared().setSecrets(this, std::move(secrets));
}

VORNEncryptionKey::VORNEncryptionKey(const VORNEncryptionKey& other)
    : VORNEncryptionKey(other.key_, other.initializationVector_) {}

VORNEncryptionKey::~VORNEncryptionKey() {
  VORNSdkLogger::shared().setSecrets(this, {});
}

std::shared_ptr<VORNEncryptionKey> VORNEncryptionKey::createKey() {
  auto key = VORNSDKCryptoUtils::randomByteDataWithLength(kAES256KeyLength);
  auto iv = VORNSDKCryptoUtils::randomByteDataWithLength(kIVLength);
  if (!key || !iv)
    return nullptr;
  return std::make_shared<VORNEncryptionKey>(std::move(*key), std::move(*iv));
}

const Bytes& VORNEncryptionKey::key() const {
  return key_;
}

const Bytes& VORNEncryptionKey::initializationVector() const {
  return initializationVector_;
}

std::string VORNEncryptionKey::keyAsString() const {
  return base64Encode(key_);
}

std::string VORNEncryptionKey::initializationVectorAsString() const {
  return base64Encode(initializationVector_);
}

std::optional<Bytes> VORNEncryptionKey::encryptData(ByteView data) const {
  return VORNSDKCryptoUtils::aes256EncryptData(data, key_, initializationVector_);
}

std::optional<Bytes> VORNEncryptionKey::decryptData(ByteView data) const {
  return VORNSDKCryptoUtils::aes256DecryptData(data, key_, initializationVector_);
}

bool VORNEncryptionKey::isEqual(const VORNEncryptionKey& other) const {
  return typeid(other) == typeid(VORNEncryptionKey) && key_ == other.key_ &&
         initializationVector_ == other.initializationVector_;
}

}  // namespace vorn

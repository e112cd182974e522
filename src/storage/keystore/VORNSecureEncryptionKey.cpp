#include "vorn/storage/keystore/VORNSecureEncryptionKey.hpp"

#include "vorn/logging/Log.hpp"
#include "vorn/platform/KeychainItem.hpp"
#include "vorn/storage/crypto/VORNSDKCryptoUtils.hpp"

namespace vorn {
namespace {

// The symmetric accessors have no meaning for an EC-backed key; asking is a programming error
// that is reported, never thrown.
const Bytes& unsupported(std::string_view operation) {
  static const Bytes kNone;
  VORN_LOG_FAULT(LoggerCategory::encryption,
                 std::string(operation) + " not supported on ZQSecureEncryptionKey.");
  return kNone;
}

}  // namespace

VORNSecureEncryptionKey::VORNSecureEncryptionKey(std::string label) : label_(std::move(label)) {}

std::shared_ptr<VORNSecureEncryptionKey> VORNSecureEncryptionKey::create(std::string_view label,
                                                                         bool autoCreate) {
  auto key = std::make_shared<VORNSecureEncryptionKey>(std::string(label));
  if (key->getKeyRefs())
    return key;
  if (!autoCreate)
    return nullptr;
  const bool enclave = VORNSDKCryptoUtils::isSecureEnclaveAvailable();
  VORNSDKCryptoUtils::createECKeyPairWithName(
      label, kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly, enclave);
  if (!key->getKeyRefs())
    return nullptr;
  VORN_LOG_DEBUG(LoggerCategory::encryption, std::string("Creating secure key ") +
                                                 (enclave ? "" : "NOT ") + "using secure enclave");
  return key;
}

std::shared_ptr<VORNSecureEncryptionKey> VORNSecureEncryptionKey::createKey(
    std::string_view label) {
  deleteKey(label);
  return create(label, true);
}

std::shared_ptr<VORNSecureEncryptionKey> VORNSecureEncryptionKey::retrieveKey(
    std::string_view label) {
  return create(label, false);
}

void VORNSecureEncryptionKey::deleteKey(std::string_view label) {
  VORNSDKCryptoUtils::deleteECKeyPairWithName(label);
}

bool VORNSecureEncryptionKey::getKeyRefs() {
  publicKey_ = VORNSDKCryptoUtils::getECPublicKeyRefWithName(label_);
  privateKey_ = VORNSDKCryptoUtils::getECPrivateKeyRefWithName(label_);
  return publicKey_ && privateKey_;
}

const Bytes& VORNSecureEncryptionKey::key() const {
  return unsupported("key");
}

const Bytes& VORNSecureEncryptionKey::initializationVector() const {
  return unsupported("initializationVector");
}

std::string VORNSecureEncryptionKey::keyAsString() const {
  unsupported("keyAsString");
  return {};
}

std::string VORNSecureEncryptionKey::initializationVectorAsString() const {
  unsupported("initializationVectorAsString");
  return {};
}

std::optional<Bytes> VORNSecureEncryptionKey::encryptData(ByteView data) const {
  return VORNSDKCryptoUtils::encryptUsingECforData(data, publicKey_);
}

std::optional<Bytes> VORNSecureEncryptionKey::decryptData(ByteView data) const {
  return VORNSDKCryptoUtils::decryptUsingECforData(data, privateKey_);
}

bool VORNSecureEncryptionKey::isEqual(const VORNEncryptionKey& other) const {
  const auto* secure = dynamic_cast<const VORNSecureEncryptionKey*>(&other);
  return secure && secure->label_ == label_;
}

}  // namespace vorn

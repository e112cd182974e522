#include "vorn/storage/keystore/VORNSecureEncryptionKey.hpp"

#include "storage/keystore/SecureKeyPair.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/platform/KeychainItem.hpp"
#include "vorn/storage/crypto/VORNSDKCryptoUtils.hpp"
#include "vorn/storage/keychain/KeychainItems.hpp"

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

KeychainStore& sharedStore() {
  return *KeychainItems::shared()->store();
}

}  // namespace

VORNSecureEncryptionKey::VORNSecureEncryptionKey(std::string label) : label_(std::move(label)) {}

VORNSecureEncryptionKey::VORNSecureEncryptionKey(std::string label, KeyRef publicKey,
                                                 KeyRef privateKey)
    : label_(std::move(label)),
      publicKey_(std::move(publicKey)),
      privateKey_(std::move(privateKey)) {}

ReadResult<std::shared_ptr<VORNSecureEncryptionKey>> VORNSecureEncryptionKey::find(
    KeychainStore& store, std::string_view label) {
  return findSecureKeyPair(store, label).map([&](SecureKeyPair pair) {
    return std::make_shared<VORNSecureEncryptionKey>(std::string(label), std::move(pair.publicKey),
                                                     std::move(pair.privateKey));
  });
}

std::shared_ptr<VORNSecureEncryptionKey> VORNSecureEncryptionKey::create(KeychainStore& store,
                                                                         std::string_view label,
                                                                         bool autoCreate) {
  auto found = find(store, label);
  if (found.isFound())
    return std::move(found).value();
  if (found.isError() || !autoCreate)
    return nullptr;
  const bool enclave = VORNSDKCryptoUtils::isSecureEnclaveAvailable();
  createSecureKeyPair(store, label, kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
  auto made = find(store, label).valueIfFound();
  if (!made)
    return nullptr;
  VORN_LOG_DEBUG(LoggerCategory::encryption, std::string("Creating secure key ") +
                                                 (enclave ? "" : "NOT ") + "using secure enclave");
  return std::move(*made);
}

std::shared_ptr<VORNSecureEncryptionKey> VORNSecureEncryptionKey::create(std::string_view label,
                                                                         bool autoCreate) {
  return create(sharedStore(), label, autoCreate);
}

std::shared_ptr<VORNSecureEncryptionKey> VORNSecureEncryptionKey::createKey(
    KeychainStore& store, std::string_view label) {
  deleteKey(store, label);
  return create(store, label, true);
}

std::shared_ptr<VORNSecureEncryptionKey> VORNSecureEncryptionKey::createKey(
    std::string_view label) {
  return createKey(sharedStore(), label);
}

std::shared_ptr<VORNSecureEncryptionKey> VORNSecureEncryptionKey::retrieveKey(
    KeychainStore& store, std::string_view label) {
  return create(store, label, false);
}

std::shared_ptr<VORNSecureEncryptionKey> VORNSecureEncryptionKey::retrieveKey(
    std::string_view label) {
  return retrieveKey(sharedStore(), label);
}

void VORNSecureEncryptionKey::deleteKey(KeychainStore& store, std::string_view label) {
  deleteSecureKeyPair(store, label);
}

void VORNSecureEncryptionKey::deleteKey(std::string_view label) {
  deleteKey(sharedStore(), label);
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

// EC P-256 key pairs in the keychain.

#include "storage/crypto/KeyMaterial.hpp"
#include "storage/crypto/KeyTags.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/storage/crypto/VORNSDKCryptoUtils.hpp"

namespace vorn {
namespace {

constexpr std::size_t kECKeyBits = 256;

void deleteLogged(const std::string& tag) {
  const OSStatus status = deleteKeyHalf(tag);
  if (status != errSecSuccess && status != errSecItemNotFound) {
    VORN_LOG_ERROR(LoggerCategory::encryption, "Error deleting EC key with tag " + tag +
                                                   ". Error code: " + std::to_string(status));
  }
}

}  // namespace

void VORNSDKCryptoUtils::createECKeyPairWithName(std::string_view name,
                                                 std::string_view accessibleAttribute,
                                                 bool /*useSecureEnclave*/) {
  // The enclave is never available in this build, so the request is moot.
  PKey pair = generateEcKey();
  Bytes privateBytes = pair ? ecExternal(pair.get(), true) : Bytes{};
  const OSStatus privateStatus =
      privateBytes.empty() ? errSecParam
                           : storeKeyHalf(keyTag(kECPrivateKeyTagPrefix, name), KeychainKeyType::ec,
                                          KeychainKeyClass::privateKey, kECKeyBits,
                                          accessibleAttribute, std::move(privateBytes));
  if (privateStatus != errSecSuccess) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Error creating EC private Key with name " + std::string(name) +
                       ". Error code: " + std::to_string(privateStatus));
    return;
  }
  Bytes publicBytes = ecExternal(pair.get(), false);
  if (publicBytes.empty() ||
      storeKeyHalf(keyTag(kECPublicKeyTagPrefix, name), KeychainKeyType::ec,
                   KeychainKeyClass::publicKey, kECKeyBits, accessibleAttribute,
                   std::move(publicBytes)) != errSecSuccess) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Error creating EC public key with name " + std::string(name));
  }
}

void VORNSDKCryptoUtils::deleteECKeyPairWithName(std::string_view name) {
  deleteLogged(keyTag(kECPrivateKeyTagPrefix, name));
  deleteLogged(keyTag(kECPublicKeyTagPrefix, name));
}

KeyRef VORNSDKCryptoUtils::getECKeyRefWithTag(std::string_view tag) {
  KeychainKey key;
  OSStatus status = loadKeyHalf(tag, KeychainKeyType::ec, 0, key);
  KeyRef ref;
  if (status == errSecSuccess) {
    ref = ecKeyFromExternal(key.keyData, key.keyClass == KeychainKeyClass::privateKey);
    status = ref ? errSecSuccess : errSecDecode;
  }
  if (!ref) {
    VORN_LOG_ERROR(LoggerCategory::encryption, "Error getting EC SecKeyRef with tag " +
                                                   std::string(tag) +
                                                   ". Error code: " + std::to_string(status));
  }
  return ref;
}

KeyRef VORNSDKCryptoUtils::getECPublicKeyRefWithName(std::string_view name) {
  return getECKeyRefWithTag(keyTag(kECPublicKeyTagPrefix, name));
}

KeyRef VORNSDKCryptoUtils::getECPrivateKeyRefWithName(std::string_view name) {
  return getECKeyRefWithTag(keyTag(kECPrivateKeyTagPrefix, name));
}

void VORNSDKCryptoUtils::deleteKeyByTag(std::string_view tag) {
  deleteKeyHalf(tag);
}

}  // namespace vorn

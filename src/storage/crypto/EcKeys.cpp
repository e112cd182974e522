#include "storage/crypto/EcKeys.hpp"

#include "storage/crypto/KeyMaterial.hpp"
#include "storage/crypto/KeyTags.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/storage/crypto/VORNSDKCryptoUtils.hpp"

namespace vorn::ec {
namespace {

constexpr std::size_t kECKeyBits = 256;

void deleteLogged(KeychainStore& store, const std::string& tag) {
  const OSStatus status = deleteKeyHalf(store, tag);
  if (status != errSecSuccess && status != errSecItemNotFound) {
    VORN_LOG_ERROR(LoggerCategory::encryption, "Error deleting EC key with tag " + tag +
                                                   ". Error code: " + std::to_string(status));
  }
}

}  // namespace

void createPair(KeychainStore& store, std::string_view name, std::string_view accessibleAttribute) {
  PKey pair = generateEcKey();
  Bytes privateBytes = pair ? ecExternal(pair.get(), true) : Bytes{};
  const OSStatus privateStatus =
      privateBytes.empty() ? errSecParam
                           : storeKeyHalf(store, keyTag(kECPrivateKeyTagPrefix, name),
                                          KeychainKeyType::ec, KeychainKeyClass::privateKey,
                                          kECKeyBits, accessibleAttribute, std::move(privateBytes));
  if (privateStatus != errSecSuccess) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Error creating EC private Key with name " + std::string(name) +
                       ". Error code: " + std::to_string(privateStatus));
    return;
  }
  Bytes publicBytes = ecExternal(pair.get(), false);
  if (publicBytes.empty() ||
      storeKeyHalf(store, keyTag(kECPublicKeyTagPrefix, name), KeychainKeyType::ec,
                   KeychainKeyClass::publicKey, kECKeyBits, accessibleAttribute,
                   std::move(publicBytes)) != errSecSuccess) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Error creating EC public key with name " + std::string(name));
  }
}

void deletePair(KeychainStore& store, std::string_view name) {
  deleteLogged(store, keyTag(kECPrivateKeyTagPrefix, name));
  deleteLogged(store, keyTag(kECPublicKeyTagPrefix, name));
}

KeyRef keyRefWithTag(KeychainStore& store, std::string_view tag) {
  KeychainKey key;
  OSStatus status = loadKeyHalf(store, tag, KeychainKeyType::ec, 0, key);
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

}  // namespace vorn::ec

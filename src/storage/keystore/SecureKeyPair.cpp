#include "storage/keystore/SecureKeyPair.hpp"

#include "storage/crypto/KeyMaterial.hpp"
#include "storage/crypto/KeyTags.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/storage/crypto/VORNSDKCryptoUtils.hpp"

namespace vorn {
namespace {

constexpr int kECKeyBits = 256;

// One half of a pair. Any status of the store other than "not found" is an error, whatever
// it says; only bytes that were read and do not make a key (they never will) are as good as
// a missing half.
ReadResult<KeyRef> findHalf(KeychainStore& store, const std::string& tag) {
  KeychainKey key;
  OSStatus status = store.loadKey(tag, std::nullopt, key);
  const bool readable = status == errSecSuccess || status == errSecItemNotFound;
  if (status == errSecSuccess && key.keyType != KeychainKeyType::ec)
    status = errSecItemNotFound;
  KeyRef ref;
  if (status == errSecSuccess) {
    ref = ecKeyFromExternal(key.keyData, key.keyClass == KeychainKeyClass::privateKey);
    status = ref ? errSecSuccess : errSecDecode;
  }
  if (ref)
    return ReadResult<KeyRef>::found(std::move(ref));
  VORN_LOG_ERROR(LoggerCategory::encryption, "Error getting EC SecKeyRef with tag " + tag +
                                                 ". Error code: " + std::to_string(status));
  return readable ? ReadResult<KeyRef>::absent() : ReadResult<KeyRef>::error(status);
}

OSStatus storeHalf(KeychainStore& store, const std::string& tag, KeychainKeyClass keyClass,
                   std::string_view accessible, Bytes data) {
  KeychainKey key;
  key.applicationTag = tag;
  key.keyType = KeychainKeyType::ec;
  key.keyClass = keyClass;
  key.keySizeInBits = kECKeyBits;
  key.accessible = std::string(accessible);
  key.keyData = std::move(data);
  store.deleteKey(tag);
  return store.storeKey(key);
}

void deleteHalf(KeychainStore& store, const std::string& tag) {
  const OSStatus status = store.deleteKey(tag);
  if (status != errSecSuccess && status != errSecItemNotFound) {
    VORN_LOG_ERROR(LoggerCategory::encryption, "Error deleting EC key with tag " + tag +
                                                   ". Error code: " + std::to_string(status));
  }
}

}  // namespace

ReadResult<SecureKeyPair> findSecureKeyPair(KeychainStore& store, std::string_view name) {
  auto publicKey = findHalf(store, keyTag(kECPublicKeyTagPrefix, name));
  auto privateKey = findHalf(store, keyTag(kECPrivateKeyTagPrefix, name));
  if (publicKey.isError() || privateKey.isError()) {
    return ReadResult<SecureKeyPair>::error(publicKey.isError() ? publicKey.status()
                                                                : privateKey.status());
  }
  if (!publicKey.isFound() || !privateKey.isFound())
    return ReadResult<SecureKeyPair>::absent();
  return ReadResult<SecureKeyPair>::found(
      SecureKeyPair{std::move(publicKey).value(), std::move(privateKey).value()});
}

void createSecureKeyPair(KeychainStore& store, std::string_view name, std::string_view accessible) {
  PKey pair = generateEcKey();
  Bytes privateBytes = pair ? ecExternal(pair.get(), true) : Bytes{};
  const OSStatus privateStatus =
      privateBytes.empty()
          ? errSecParam
          : storeHalf(store, keyTag(kECPrivateKeyTagPrefix, name), KeychainKeyClass::privateKey,
                      accessible, std::move(privateBytes));
  if (privateStatus != errSecSuccess) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Error creating EC private Key with name " + std::string(name) +
                       ". Error code: " + std::to_string(privateStatus));
    return;
  }
  Bytes publicBytes = ecExternal(pair.get(), false);
  if (publicBytes.empty() ||
      storeHalf(store, keyTag(kECPublicKeyTagPrefix, name), KeychainKeyClass::publicKey, accessible,
                std::move(publicBytes)) != errSecSuccess) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Error creating EC public key with name " + std::string(name));
  }
}

void deleteSecureKeyPair(KeychainStore& store, std::string_view name) {
  deleteHalf(store, keyTag(kECPrivateKeyTagPrefix, name));
  deleteHalf(store, keyTag(kECPublicKeyTagPrefix, name));
}

}  // namespace vorn

#include "storage/keystore/SecureKeyPair.hpp"

#include "storage/crypto/EcKeys.hpp"
#include "storage/crypto/KeyMaterial.hpp"
#include "storage/crypto/KeyTags.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/storage/crypto/VORNSDKCryptoUtils.hpp"

namespace vorn {
namespace {

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
  ec::createPair(store, name, accessible);
}

void deleteSecureKeyPair(KeychainStore& store, std::string_view name) {
  ec::deletePair(store, name);
}

}  // namespace vorn

// The class operations forward to one routine per concept (aes, rsa, ec, ecies, der, random
// bytes); the key pairs live in the current Platform's keychain.
#include "vorn/storage/crypto/VORNSDKCryptoUtils.hpp"

#include <memory>
#include <string>

#include "storage/crypto/Aes.hpp"
#include "storage/crypto/Der.hpp"
#include "storage/crypto/EcKeys.hpp"
#include "storage/crypto/Ecies.hpp"
#include "storage/crypto/KeyTags.hpp"
#include "storage/crypto/RandomBytes.hpp"
#include "storage/crypto/RsaKeys.hpp"
#include "vorn/platform/Platform.hpp"
#include "vorn/storage/crypto/Base64.hpp"

namespace vorn {
namespace {

std::shared_ptr<KeychainStore> keychain() {
  return Platform::current()->keychain;
}

}  // namespace

std::optional<Bytes> VORNSDKCryptoUtils::randomByteDataWithLength(std::size_t length) {
  return randomBytes(length);
}

std::optional<Bytes> VORNSDKCryptoUtils::aesEncryptData(ByteView data, std::optional<ByteView> key,
                                                        std::size_t keyLength,
                                                        std::optional<ByteView> iv) {
  return aes::encrypt(data, key, keyLength, iv);
}

std::optional<Bytes> VORNSDKCryptoUtils::aesDecryptData(ByteView data, std::optional<ByteView> key,
                                                        std::size_t keyLength,
                                                        std::optional<ByteView> iv) {
  return aes::decrypt(data, key, keyLength, iv);
}

std::optional<Bytes> VORNSDKCryptoUtils::aes128EncryptData(ByteView data,
                                                           std::optional<ByteView> key,
                                                           std::optional<ByteView> iv) {
  return aes::encrypt(data, key, kAES128KeyLength, iv);
}

std::optional<Bytes> VORNSDKCryptoUtils::aes128DecryptData(ByteView data,
                                                           std::optional<ByteView> key,
                                                           std::optional<ByteView> iv) {
  return aes::decrypt(data, key, kAES128KeyLength, iv);
}

std::optional<Bytes> VORNSDKCryptoUtils::aes256EncryptData(ByteView data,
                                                           std::optional<ByteView> key,
                                                           std::optional<ByteView> iv) {
  return aes::encrypt(data, key, kAES256KeyLength, iv);
}

std::optional<Bytes> VORNSDKCryptoUtils::aes256DecryptData(ByteView data,
                                                           std::optional<ByteView> key,
                                                           std::optional<ByteView> iv) {
  return aes::decrypt(data, key, kAES256KeyLength, iv);
}

void VORNSDKCryptoUtils::createRSAKeyPairWithName(std::string_view name, std::size_t keyLength,
                                                  std::string_view accessibleAttribute) {
  rsa::createPair(*keychain(), name, keyLength, accessibleAttribute);
}

KeyRef VORNSDKCryptoUtils::getRSAPublicKeyRefWithName(std::string_view name,
                                                      std::size_t keyLength) {
  return getRSAKeyRefWithTag(keyTag(kRSAPublicKeyTagPrefix, name), keyLength);
}

KeyRef VORNSDKCryptoUtils::getRSAPrivateKeyRefWithName(std::string_view name,
                                                       std::size_t keyLength) {
  return getRSAKeyRefWithTag(keyTag(kRSAPrivateKeyTagPrefix, name), keyLength);
}

std::optional<Bytes> VORNSDKCryptoUtils::getRSAPrivateKeyDataWithName(std::string_view name,
                                                                      std::size_t keyLength) {
  return getRSAKeyDataWithTag(keyTag(kRSAPrivateKeyTagPrefix, name), keyLength);
}

std::optional<std::string> VORNSDKCryptoUtils::getRSAPublicKeyStringWithName(
    std::string_view name, std::size_t keyLength) {
  const auto data = getRSAKeyDataWithTag(keyTag(kRSAPublicKeyTagPrefix, name), keyLength);
  if (!data)
    return std::nullopt;
  return base64Encode(*data);
}

std::optional<Bytes> VORNSDKCryptoUtils::getRSAKeyDataWithTag(std::string_view tag,
                                                              std::size_t keyLength) {
  return rsa::keyDataWithTag(*keychain(), tag, keyLength);
}

KeyRef VORNSDKCryptoUtils::getRSAKeyRefWithTag(std::string_view tag, std::size_t keyLength) {
  return rsa::keyRefWithTag(*keychain(), tag, keyLength);
}

Bytes VORNSDKCryptoUtils::getRSAPublicKeyAsDER(ByteView rawPublicKey) {
  return der::rsaPublicKeyInfo(rawPublicKey);
}

std::size_t VORNSDKCryptoUtils::encodeLength(Bytes& out, std::size_t length) {
  return der::encodeLength(out, length);
}

std::optional<Bytes> VORNSDKCryptoUtils::encryptUsingRSAforData(ByteView data,
                                                                const KeyRef& publicKey) {
  return rsa::encrypt(data, publicKey);
}

std::optional<Bytes> VORNSDKCryptoUtils::decryptUsingRSAforData(ByteView data,
                                                                const KeyRef& privateKey) {
  return rsa::decrypt(data, privateKey);
}

void VORNSDKCryptoUtils::createECKeyPairWithName(std::string_view name,
                                                 std::string_view accessibleAttribute,
                                                 bool /*useSecureEnclave*/) {
  // The enclave is never available in this build, so the request is moot.
  ec::createPair(*keychain(), name, accessibleAttribute);
}

void VORNSDKCryptoUtils::deleteECKeyPairWithName(std::string_view name) {
  ec::deletePair(*keychain(), name);
}

KeyRef VORNSDKCryptoUtils::getECPublicKeyRefWithName(std::string_view name) {
  return getECKeyRefWithTag(keyTag(kECPublicKeyTagPrefix, name));
}

KeyRef VORNSDKCryptoUtils::getECPrivateKeyRefWithName(std::string_view name) {
  return getECKeyRefWithTag(keyTag(kECPrivateKeyTagPrefix, name));
}

KeyRef VORNSDKCryptoUtils::getECKeyRefWithTag(std::string_view tag) {
  return ec::keyRefWithTag(*keychain(), tag);
}

std::optional<Bytes> VORNSDKCryptoUtils::encryptUsingECforData(ByteView data,
                                                               const KeyRef& publicKey) {
  return ecies::encrypt(data, publicKey);
}

std::optional<Bytes> VORNSDKCryptoUtils::decryptUsingECforData(ByteView data,
                                                               const KeyRef& privateKey) {
  return ecies::decrypt(data, privateKey);
}

void VORNSDKCryptoUtils::deleteKeyByTag(std::string_view tag) {
  deleteKeyHalf(*keychain(), tag);
}

std::string VORNSDKCryptoUtils::getMessageWithOSStatus(std::int32_t status) {
  // The host prints the code with %lu, so a negative status reads as its unsigned 64-bit twin.
  const std::string text = keychainStatusName(status);
  return "Error: " + text + ", description: " + text +
         ", code: " + std::to_string(static_cast<unsigned long>(static_cast<long>(status))) +
         ", localizedDesc: " + text;
}

}  // namespace vorn

#include "storage/crypto/RsaKeys.hpp"

#include <openssl/rsa.h>

#include "storage/crypto/KeyMaterial.hpp"
#include "storage/crypto/KeyTags.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/storage/crypto/VORNSDKCryptoUtils.hpp"

namespace vorn::rsa {
namespace {

std::string lengthText(std::size_t keyLength) {
  return std::to_string(keyLength);
}

// Encrypts or decrypts through a PKCS#1 v1.5 context on `key`; no value on any failure.
std::optional<Bytes> pkcs1(const KeyRef& key, ByteView data, bool encrypt) {
  PKeyContext context(EVP_PKEY_CTX_new_from_pkey(nullptr, key->native().key.get(), nullptr));
  if (!context ||
      (encrypt ? EVP_PKEY_encrypt_init(context.get()) : EVP_PKEY_decrypt_init(context.get())) !=
          1 ||
      EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING) != 1)
    return std::nullopt;
  Bytes out(key->blockSize());
  std::size_t length = out.size();
  const int status =
      encrypt ? EVP_PKEY_encrypt(context.get(), out.data(), &length, data.data(), data.size())
              : EVP_PKEY_decrypt(context.get(), out.data(), &length, data.data(), data.size());
  if (status != 1)
    return std::nullopt;
  out.resize(length);
  return out;
}

bool usable(const KeyRef& key, bool wantPrivate) {
  return key && key->isRsa() && (!wantPrivate || key->isPrivate());
}

}  // namespace

void createPair(KeychainStore& store, std::string_view name, std::size_t keyLength,
                std::string_view accessibleAttribute) {
  PKey pair = generateRsaKey(keyLength);
  Bytes privateBytes = pair ? rsaExternal(pair.get(), true) : Bytes{};
  const OSStatus privateStatus =
      privateBytes.empty() ? errSecParam
                           : storeKeyHalf(store, keyTag(kRSAPrivateKeyTagPrefix, name),
                                          KeychainKeyType::rsa, KeychainKeyClass::privateKey,
                                          keyLength, accessibleAttribute, std::move(privateBytes));
  if (privateStatus != errSecSuccess) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Error creating RSA private Key with name " + std::string(name) +
                       " and length " + lengthText(keyLength) +
                       ". Error code: " + std::to_string(privateStatus));
    return;
  }
  Bytes publicBytes = rsaExternal(pair.get(), false);
  if (publicBytes.empty() ||
      storeKeyHalf(store, keyTag(kRSAPublicKeyTagPrefix, name), KeychainKeyType::rsa,
                   KeychainKeyClass::publicKey, keyLength, accessibleAttribute,
                   std::move(publicBytes)) != errSecSuccess) {
    VORN_LOG_ERROR(LoggerCategory::encryption, "Error creating RSA public key with name " +
                                                   std::string(name) + " and length " +
                                                   lengthText(keyLength) + ".");
  }
}

std::optional<Bytes> keyDataWithTag(KeychainStore& store, std::string_view tag,
                                    std::size_t keyLength) {
  KeychainKey key;
  const OSStatus status = loadKeyHalf(store, tag, KeychainKeyType::rsa, keyLength, key);
  if (status != errSecSuccess) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Error getting RSA key with tag " + std::string(tag) + " and length " +
                       lengthText(keyLength) + ". Error code: " + std::to_string(status));
    return std::nullopt;
  }
  return std::move(key.keyData);
}

KeyRef keyRefWithTag(KeychainStore& store, std::string_view tag, std::size_t keyLength) {
  KeychainKey key;
  OSStatus status = loadKeyHalf(store, tag, KeychainKeyType::rsa, keyLength, key);
  KeyRef ref;
  if (status == errSecSuccess) {
    ref = rsaKeyFromExternal(key.keyData, key.keyClass == KeychainKeyClass::privateKey);
    status = ref ? errSecSuccess : errSecDecode;
  }
  if (!ref) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Error getting RSA SecKeyRef with tag " + std::string(tag) + " and length " +
                       lengthText(keyLength) + ". Error code: " + std::to_string(status));
  }
  return ref;
}

std::optional<Bytes> encrypt(ByteView data, const KeyRef& publicKey) {
  auto out = usable(publicKey, false) ? pkcs1(publicKey, data, true) : std::nullopt;
  if (!out) {
    VORN_LOG_WARNING(LoggerCategory::encryption,
                     "The encryptUsingRSAforData failed with message: " +
                         VORNSDKCryptoUtils::getMessageWithOSStatus(errSecParam));
  }
  return out;
}

std::optional<Bytes> decrypt(ByteView data, const KeyRef& privateKey) {
  const bool ok = usable(privateKey, true);
  auto out = ok ? pkcs1(privateKey, data, false) : std::nullopt;
  if (!out) {
    VORN_LOG_WARNING(LoggerCategory::encryption,
                     "The decryptUsingRSAforData failed with status code: " +
                         std::to_string(ok ? errSecDecode : errSecParam));
  }
  return out;
}

}  // namespace vorn::rsa

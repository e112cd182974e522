// The crypto toolbox behind the key store and the encryption manager: AES-CBC with PKCS#7
// padding, random bytes, RSA (PKCS#1 v1.5) and EC P-256 (ECIES) key pairs kept in the
// keychain by tag, and DER helpers. Class operations only; no instance. Each operation
// forwards to the routine of its concept (src/storage/crypto/: Aes, RsaKeys, EcKeys, Ecies,
// Der, RandomBytes), which takes its key store as an argument; the class passes the current
// Platform's keychain.
//
// AES: the key is cut or zero-padded to the key length and the vector to 16 bytes; no vector
// means 16 zero bytes. The output is the bare ciphertext. A null key, a failed cipher set-up
// or a failed update/final (bad padding on decryption) gives no value and an `error` line in
// category `encryption`.
//
// Key pairs live in Platform's keychain under application tags "<prefix>.<name>" (the
// prefixes below). Lookups answer null when no key is stored under the tag.
//
// Thread-safe. Each thread keeps one cipher context per key length and re-keys it per call;
// the ciphers are looked up once per process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Export.hpp"
#include "vorn/storage/crypto/AsymmetricKey.hpp"

namespace vorn {

inline constexpr int kZQPBKDFDefaultNumberOfDerivationRounds = 4000;
inline constexpr int kZQPBKDFDefaultDerivedKeyByteLength = 128;
inline constexpr int kZQPBKDFDefaultSaltByteLength = 32;

inline constexpr std::string_view kRSAPrivateKeyTagPrefix = "com.quorvantis.rsakey.private";
inline constexpr std::string_view kRSAPublicKeyTagPrefix = "com.quorvantis.rsakey.public";
inline constexpr std::string_view kECPrivateKeyTagPrefix = "com.quorvantis.eckey.private";
inline constexpr std::string_view kECPublicKeyTagPrefix = "com.quorvantis.eckey.public";

inline constexpr std::size_t kAES128KeyLength = 16;
inline constexpr std::size_t kAES256KeyLength = 32;
inline constexpr std::size_t kAESBlockSize = 16;

class VORN_API VORNSDKCryptoUtils {
 public:
  VORNSDKCryptoUtils() = delete;

  /// `length` random bytes from the crypto library's generator.
  static std::optional<Bytes> randomByteDataWithLength(std::size_t length);

  static std::optional<Bytes> aes128EncryptData(ByteView data, std::optional<ByteView> key,
                                                std::optional<ByteView> iv);
  static std::optional<Bytes> aes128DecryptData(ByteView data, std::optional<ByteView> key,
                                                std::optional<ByteView> iv);
  static std::optional<Bytes> aes256EncryptData(ByteView data, std::optional<ByteView> key,
                                                std::optional<ByteView> iv);
  static std::optional<Bytes> aes256DecryptData(ByteView data, std::optional<ByteView> key,
                                                std::optional<ByteView> iv);
  /// The routine behind the four above; `keyLength` is 16 or 32, anything else fails set-up.
  static std::optional<Bytes> aesEncryptData(ByteView data, std::optional<ByteView> key,
                                             std::size_t keyLength, std::optional<ByteView> iv);
  static std::optional<Bytes> aesDecryptData(ByteView data, std::optional<ByteView> key,
                                             std::size_t keyLength, std::optional<ByteView> iv);

  /// Makes an RSA pair of `keyLength` bits and stores both halves under the name's tags,
  /// replacing any earlier pair of that name. `accessibleAttribute` is a keychain
  /// accessibility value (KeychainItem.hpp).
  static void createRSAKeyPairWithName(std::string_view name, std::size_t keyLength,
                                       std::string_view accessibleAttribute);
  static KeyRef getRSAPublicKeyRefWithName(std::string_view name, std::size_t keyLength);
  static KeyRef getRSAPrivateKeyRefWithName(std::string_view name, std::size_t keyLength);
  static std::optional<Bytes> getRSAPrivateKeyDataWithName(std::string_view name,
                                                           std::size_t keyLength);
  /// The base64 text of the stored public key's bytes; no value when none is stored.
  static std::optional<std::string> getRSAPublicKeyStringWithName(std::string_view name,
                                                                  std::size_t keyLength);
  static std::optional<Bytes> getRSAKeyDataWithTag(std::string_view tag, std::size_t keyLength);
  static KeyRef getRSAKeyRefWithTag(std::string_view tag, std::size_t keyLength);
  /// Wraps a PKCS#1 RSAPublicKey in a SubjectPublicKeyInfo for rsaEncryption.
  static Bytes getRSAPublicKeyAsDER(ByteView rawPublicKey);
  /// Appends the DER encoding of `length` to `out` and returns how many bytes it took.
  static std::size_t encodeLength(Bytes& out, std::size_t length);
  static std::optional<Bytes> encryptUsingRSAforData(ByteView data, const KeyRef& publicKey);
  static std::optional<Bytes> decryptUsingRSAforData(ByteView data, const KeyRef& privateKey);

  /// Always false: keys are never made in a secure enclave by this build.
  static bool isSecureEnclaveAvailable() noexcept { return false; }
  /// Makes a P-256 pair and stores both halves under the name's tags.
  static void createECKeyPairWithName(std::string_view name, std::string_view accessibleAttribute,
                                      bool useSecureEnclave);
  static void deleteECKeyPairWithName(std::string_view name);
  static KeyRef getECPublicKeyRefWithName(std::string_view name);
  static KeyRef getECPrivateKeyRefWithName(std::string_view name);
  static KeyRef getECKeyRefWithTag(std::string_view tag);
  /// ECIES (X9.63 KDF with SHA-256, AES-GCM): the ephemeral public point (65 bytes), the
  /// ciphertext, then the 16-byte tag.
  static std::optional<Bytes> encryptUsingECforData(ByteView data, const KeyRef& publicKey);
  static std::optional<Bytes> decryptUsingECforData(ByteView data, const KeyRef& privateKey);
  static void deleteKeyByTag(std::string_view tag);

  /// "Error: %@, description: %@, code: %lu, localizedDesc: %@" for a keychain status.
  static std::string getMessageWithOSStatus(std::int32_t status);
};

}  // namespace vorn

// A symmetric key of the key store: a 32-byte AES key with its fixed 16-byte vector, used
// with AES-256-CBC and PKCS#7 padding. Immutable; share it and use it from any thread.
//
// While a key lives, its key and vector are secrets of the logger (VORNSdkLogger::setSecrets)
// as raw bytes, hexadecimal and base64 text, so no log line and no sink can show them
// whoever wrote the line. Material under 8 bytes, which no cipher takes, is not registered.
//
// VORNSecureEncryptionKey derives from it and replaces both operations with EC encryption;
// the accessors of the symmetric material do not apply to it (see there).
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Export.hpp"

namespace vorn {

inline constexpr std::string_view kEncryptionKeyDataArchiveKey =
    "com.quorvantis.encryption.key.data";
inline constexpr std::string_view kEncryptionKeyIVArchiveKey = "com.quorvantis.encryption.key.iv";

class VORN_API VORNEncryptionKey {
 public:
  /// initWithData:initializationVector:. The bytes are kept as given.
  VORNEncryptionKey(Bytes key, Bytes initializationVector);
  VORNEncryptionKey(const VORNEncryptionKey& other);
  VORNEncryptionKey& operator=(const VORNEncryptionKey&) = delete;
  virtual ~VORNEncryptionKey();

  /// 32 random key bytes and 16 random vector bytes; null when the generator fails.
  static std::shared_ptr<VORNEncryptionKey> createKey();

  virtual const Bytes& key() const;
  virtual const Bytes& initializationVector() const;
  virtual std::string keyAsString() const;
  virtual std::string initializationVectorAsString() const;

  virtual std::optional<Bytes> encryptData(ByteView data) const;
  virtual std::optional<Bytes> decryptData(ByteView data) const;

  /// Plain keys are equal when key and vector are; a plain key never equals a secure one.
  virtual bool isEqual(const VORNEncryptionKey& other) const;

 protected:
  VORNEncryptionKey() = default;

 private:
  Bytes key_;
  Bytes initializationVector_;
};

}  // namespace vorn

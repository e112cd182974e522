// A key of the key store backed by an EC P-256 pair in the keychain, named by a label. Only
// the label is archived; the key material never leaves the keychain. encryptData uses ECIES
// with the public key, decryptData the private key.
//
// key(), initializationVector(), keyAsString() and initializationVectorAsString() have no
// meaning here: each writes "<operation> not supported on ZQSecureEncryptionKey." at `fault`
// level in category `encryption` and answers empty.
//
// Immutable after construction; use from any thread.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/storage/crypto/AsymmetricKey.hpp"
#include "vorn/storage/crypto/VORNEncryptionKey.hpp"

namespace vorn {

inline constexpr std::string_view kSecureEncryptionKeyLabelArchiveKey =
    "com.quorvantis.encryption.securekey.label";
inline constexpr std::string_view kDefaultSecureKeyLabel = "default";

class VORN_API VORNSecureEncryptionKey : public VORNEncryptionKey {
 public:
  /// initWithLabel:autoCreate:. Finds the label's pair, or with `autoCreate` makes one;
  /// null when there is none in the end.
  static std::shared_ptr<VORNSecureEncryptionKey> create(std::string_view label, bool autoCreate);
  /// Deletes any pair of the label, then makes a new one.
  static std::shared_ptr<VORNSecureEncryptionKey> createKey(std::string_view label);
  /// An existing pair only.
  static std::shared_ptr<VORNSecureEncryptionKey> retrieveKey(std::string_view label);
  static void deleteKey(std::string_view label);

  const std::string& label() const noexcept { return label_; }
  const KeyRef& publicKey() const noexcept { return publicKey_; }
  const KeyRef& privateKey() const noexcept { return privateKey_; }

  const Bytes& key() const override;
  const Bytes& initializationVector() const override;
  std::string keyAsString() const override;
  std::string initializationVectorAsString() const override;

  std::optional<Bytes> encryptData(ByteView data) const override;
  std::optional<Bytes> decryptData(ByteView data) const override;

  /// Secure keys are equal when their labels are.
  bool isEqual(const VORNEncryptionKey& other) const override;

  explicit VORNSecureEncryptionKey(std::string label);

 private:
  /// Looks both halves up by label; true when both exist.
  bool getKeyRefs();

  std::string label_;
  KeyRef publicKey_;
  KeyRef privateKey_;
};

}  // namespace vorn

// A key of the key store backed by an EC P-256 pair in the keychain, named by a label. Only
// the label is archived; the key material never leaves the keychain. encryptData uses ECIES
// with the public key, decryptData the private key.
//
// key(), initializationVector(), keyAsString() and initializationVectorAsString() have no
// meaning here: each writes "<operation> not supported on ZQSecureEncryptionKey." at `fault`
// level in category `encryption` and answers empty.
//
// Pairs are looked up in, and made in, a given key store; the operations without a store use
// the current Platform's (KeychainItems::shared()). A pair the store could not read is never
// made again: a lookup that fails gives null, and auto-creation then makes nothing.
//
// Immutable after construction; use from any thread.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/platform/KeychainStore.hpp"
#include "vorn/platform/ReadResult.hpp"
#include "vorn/storage/crypto/AsymmetricKey.hpp"
#include "vorn/storage/crypto/VORNEncryptionKey.hpp"

namespace vorn {

inline constexpr std::string_view kSecureEncryptionKeyLabelArchiveKey =
    "com.quorvantis.encryption.securekey.label";
inline constexpr std::string_view kDefaultSecureKeyLabel = "default";

class VORN_API VORNSecureEncryptionKey : public VORNEncryptionKey {
 public:
  /// initWithLabel:autoCreate:. Finds the label's pair, or with `autoCreate` makes one when
  /// the store has none; null when there is none in the end or the store could not be read.
  static std::shared_ptr<VORNSecureEncryptionKey> create(std::string_view label, bool autoCreate);
  static std::shared_ptr<VORNSecureEncryptionKey> create(KeychainStore& store,
                                                         std::string_view label, bool autoCreate);
  /// The label's existing pair: found, absent, or an error when the store could not answer.
  static ReadResult<std::shared_ptr<VORNSecureEncryptionKey>> find(KeychainStore& store,
                                                                   std::string_view label);
  /// Deletes any pair of the label, then makes a new one.
  static std::shared_ptr<VORNSecureEncryptionKey> createKey(std::string_view label);
  static std::shared_ptr<VORNSecureEncryptionKey> createKey(KeychainStore& store,
                                                            std::string_view label);
  /// An existing pair only.
  static std::shared_ptr<VORNSecureEncryptionKey> retrieveKey(std::string_view label);
  static std::shared_ptr<VORNSecureEncryptionKey> retrieveKey(KeychainStore& store,
                                                              std::string_view label);
  static void deleteKey(std::string_view label);
  static void deleteKey(KeychainStore& store, std::string_view label);

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

  /// A key without its pair: every encryption and decryption fails.
  explicit VORNSecureEncryptionKey(std::string label);
  VORNSecureEncryptionKey(std::string label, KeyRef publicKey, KeyRef privateKey);

 private:
  std::string label_;
  KeyRef publicKey_;
  KeyRef privateKey_;
};

}  // namespace vorn

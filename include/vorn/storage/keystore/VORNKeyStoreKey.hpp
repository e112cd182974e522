// The entry type of the key store's dictionary and the wrapper of the key-store key: one
// VORNEncryptionKey (plain or secure). Archives are CBOR maps with a class tag; reading one
// from untrusted bytes never crashes and gives null when the bytes are not a valid archive.
//
// The keychain helpers work on the items of a given KeychainItems; those without one use the
// current Platform's (KeychainItems::shared()). Immutable; the keychain helpers go through
// VORNKeychainItemWrapper and are as thread-safe as it is.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Export.hpp"
#include "vorn/platform/ReadResult.hpp"
#include "vorn/storage/crypto/VORNEncryptionKey.hpp"
#include "vorn/storage/keychain/KeychainItems.hpp"

namespace vorn {

inline constexpr std::string_view kKeyStoreKeyDataArchiveKey =
    "com.quorvantis.keystore.keyStoreKeyDataArchive";

class VORN_API VORNKeyStoreKey {
 public:
  /// initWithKey:.
  explicit VORNKeyStoreKey(std::shared_ptr<VORNEncryptionKey> encryptionKey);

  /// A new plain symmetric key, wrapped; null when no random bytes could be had.
  static std::shared_ptr<VORNKeyStoreKey> createKey();

  /// Reads the keychain item `identifier` and unarchives the key under `archiverKey`.
  static std::shared_ptr<VORNKeyStoreKey> fromKeyChain(std::string_view identifier,
                                                       std::string_view archiverKey);
  /// The same, read from the store now: found, absent (no item or value, or not an archive of
  /// a key whose pair exists), or an error when the item or the key's pair could not be read.
  static ReadResult<std::shared_ptr<VORNKeyStoreKey>> readFromKeyChain(
      KeychainItems& items, std::string_view identifier, std::string_view archiverKey);
  /// Archives this key under `archiverKey` into the item; the keychain status (0: stored).
  std::int32_t toKeyChain(std::string_view identifier, std::string_view archiverKey) const;
  std::int32_t toKeyChain(KeychainItems& items, std::string_view identifier,
                          std::string_view archiverKey) const;
  /// Archives `value` under `archiverKey` into the item; the keychain status.
  static std::int32_t dataToKeyChain(std::string_view identifier, std::string_view archiverKey,
                                     ByteView value);
  static std::int32_t dataToKeyChain(KeychainItems& items, std::string_view identifier,
                                     std::string_view archiverKey, ByteView value);
  /// The bytes archived by dataToKeyChain; no value when absent or unreadable.
  static std::optional<Bytes> dataFromKeyChain(std::string_view identifier,
                                               std::string_view archiverKey);
  /// The same, read from the store now, with a failed read told apart.
  static ReadResult<Bytes> readDataFromKeyChain(KeychainItems& items, std::string_view identifier,
                                                std::string_view archiverKey);
  static bool removeKeyChainItem(std::string_view identifier);
  static bool removeKeyChainItem(KeychainItems& items, std::string_view identifier);

  const std::shared_ptr<VORNEncryptionKey>& encryptionKey() const noexcept {
    return encryptionKey_;
  }
  std::optional<Bytes> encryptData(ByteView data) const;
  std::optional<Bytes> decryptData(ByteView data) const;
  bool isEqual(const VORNKeyStoreKey& other) const;

 private:
  std::shared_ptr<VORNEncryptionKey> encryptionKey_;
};

}  // namespace vorn

// The key store: a dictionary from label to VORNKeyStoreKey, archived, encrypted with the
// key-store key and kept in one keychain item. Subclasses name the items and hold the
// key-store key; this class reads and writes the dictionary.
//
// A dictionary that cannot be read because the store did not answer is told apart from one
// that is missing or cannot be decrypted (read...() answer an error), so callers never
// replace what they merely could not read. Items are named after the base application
// identifier; while it cannot be had, nothing is read or written.
//
// Ownership: holds the KeychainItems it stores its items with and the BaseAppIdentifier that
// names them; the default constructor takes the current Platform's (the shared ones).
//
// Thread safety: every change runs in an exclusive section of the key store and, inside it,
// under the store's own re-entrant lock, which subclasses also take around their key-store key.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Export.hpp"
#include "vorn/platform/ReadResult.hpp"
#include "vorn/storage/keychain/BaseAppIdentifier.hpp"
#include "vorn/storage/keychain/KeychainItems.hpp"
#include "vorn/storage/keystore/VORNKeyStoreKey.hpp"

namespace vorn {

using KeyStoreDictionary = std::map<std::string, std::shared_ptr<VORNKeyStoreKey>, std::less<>>;

class VORN_API VORNKeyStore {
 public:
  virtual ~VORNKeyStore();

  virtual std::string storeKeychainIdentifier() const = 0;
  virtual std::string storeDataArchiveKey() const = 0;
  virtual std::string encryptionKeyKeychainIdentifier() const = 0;
  virtual std::string encryptionKeyDataArchiveKey() const = 0;
  virtual std::shared_ptr<VORNKeyStoreKey> keyStoreKey() = 0;
  virtual void setKeyStoreKey(std::shared_ptr<VORNKeyStoreKey> key) = 0;
  virtual bool keyStoreAvailable() const = 0;
  virtual bool keyStoreEnabled() const = 0;
  virtual std::string keyLabelForString(std::string_view text) const = 0;
  /// keyStoreKey(), with a key that could not be read told apart from a missing one. This
  /// default cannot tell them apart.
  virtual ReadResult<std::shared_ptr<VORNKeyStoreKey>> readKeyStoreKey();

  /// The dictionary under the current key-store key; no value when absent or unreadable.
  std::optional<KeyStoreDictionary> keyStoreDictionary();
  std::optional<KeyStoreDictionary> keyStoreDictionaryWithKey(
      const std::shared_ptr<VORNKeyStoreKey>& key);
  /// The dictionary as stored now: found; absent when there is none or it cannot be decrypted
  /// or unarchived; an error when the store (or a key pair it names) could not be read.
  ReadResult<KeyStoreDictionary> readKeyStoreDictionary();
  ReadResult<KeyStoreDictionary> readKeyStoreDictionaryWithKey(
      const std::shared_ptr<VORNKeyStoreKey>& key);
  /// Writes the dictionary under the current key-store key; no value deletes the item.
  void setKeyStoreDictionary(const std::optional<KeyStoreDictionary>& dictionary);
  void setKeyStoreDictionary(const std::optional<KeyStoreDictionary>& dictionary,
                             const std::shared_ptr<VORNKeyStoreKey>& key);
  /// The archive, encrypted with the key (no key: the archive as it is).
  std::optional<Bytes> encryptDictionary(const KeyStoreDictionary& dictionary,
                                         const std::shared_ptr<VORNKeyStoreKey>& key) const;
  /// The inverse; no value when the bytes cannot be decrypted or unarchived.
  std::optional<KeyStoreDictionary> decryptDictionaryData(
      ByteView data, const std::shared_ptr<VORNKeyStoreKey>& key) const;
  /// "<base>_<base application identifier>".
  std::string buildUniqueKeychainId(std::string_view base) const;

  KeychainItems& keychainItems() const noexcept { return *items_; }

 protected:
  /// On the current Platform's stores.
  VORNKeyStore();
  VORNKeyStore(std::shared_ptr<KeychainItems> items,
               std::shared_ptr<BaseAppIdentifier> baseAppIdentifier);

  /// Runs `body` in the key store's exclusive section, under mutex_; the section's status.
  OSStatus exclusively(const std::function<void()>& body);
  /// errSecSuccess when the items can be named (the base application identifier is known).
  OSStatus namesStatus() const;

  std::recursive_mutex mutex_;  // serialises dictionary writes and the subclass's key

 private:
  ReadResult<KeyStoreDictionary> decrypted(ByteView data,
                                           const std::shared_ptr<VORNKeyStoreKey>& key) const;

  const std::shared_ptr<KeychainItems> items_;
  const std::shared_ptr<BaseAppIdentifier> baseAppIdentifier_;
};

}  // namespace vorn

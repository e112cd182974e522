// The key store: a dictionary from label to VORNKeyStoreKey, archived, encrypted with the
// key-store key and kept in one keychain item. Subclasses name the items and hold the
// key-store key; this class reads and writes the dictionary.
//
// Thread safety: dictionary writes are serialised on the store's own lock (a re-entrant one,
// which subclasses also take around their key-store key).
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Export.hpp"
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

  /// The dictionary under the current key-store key; no value when absent or unreadable.
  std::optional<KeyStoreDictionary> keyStoreDictionary();
  std::optional<KeyStoreDictionary> keyStoreDictionaryWithKey(
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

 protected:
  VORNKeyStore() = default;

  std::recursive_mutex mutex_;  // serialises dictionary writes and the subclass's key
};

}  // namespace vorn

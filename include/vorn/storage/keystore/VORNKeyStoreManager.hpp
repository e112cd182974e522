// The process-wide entry point of the key store: hands out named symmetric keys, creating
// them on request, and keeps the key-store key current (an EC-backed secure key labelled
// "default"; an older plain key-store key is replaced on start).
//
// sharedInstance() is made on first use, thread-safe, and never destroyed. Every operation
// may be called from any thread; retrieval and storing are serialised on the manager's
// re-entrant lock. The Platform (its keychain) must be installed before first use.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Export.hpp"
#include "vorn/storage/crypto/VORNEncryptionKey.hpp"
#include "vorn/storage/keystore/VORNGeneratedKeyStore.hpp"
#include "vorn/storage/keystore/VORNKeyStoreKey.hpp"

namespace vorn {

class VORN_API VORNKeyStoreManager {
 public:
  static VORNKeyStoreManager& sharedInstance();

  /// The key of `label` (stored under keyLabelForBaseLabel(label)); with `autoCreate` a new
  /// key is made and stored when there is none. Null for no label or no key.
  std::shared_ptr<VORNEncryptionKey> retrieveKeyWithLabel(std::optional<std::string_view> label,
                                                          bool autoCreate);
  /// The key stored under the full `label` in the keychain item `keychainId`, archived
  /// unencrypted by storeKey.
  std::shared_ptr<VORNEncryptionKey> retrieveKeyWithLabel(std::string_view label,
                                                          std::string_view keychainId);
  /// Stores the key under the full label of `label` in the dictionary.
  void storeKey(const std::shared_ptr<VORNEncryptionKey>& key, std::string_view label);
  void removeKeyWithLabel(std::string_view label);
  bool keyWithLabelExists(std::string_view label);
  bool keyExists(std::string_view label, std::string_view keychainId);
  /// Sets the dictionary entry of the full `label` and writes the dictionary back.
  void storeKeyStoreKey(const std::shared_ptr<VORNKeyStoreKey>& key, std::string_view label);
  /// Archives `data` under `key` into the keychain item `keychainId`; true when stored.
  bool storeData(ByteView data, std::string_view key, std::string_view keychainId);
  std::optional<Bytes> dataForKey(std::string_view key, std::string_view keychainId);
  bool removeKeyChainWithID(std::string_view keychainId);
  std::string keyLabelForBaseLabel(std::string_view label) const;
  /// A fresh secure key labelled "default", wrapped; null when no EC pair could be made.
  std::shared_ptr<VORNKeyStoreKey> createDefaultKey();
  /// Replaces a plain key-store key with the default secure key.
  void switchToSecureKeyIfNeeded(const std::shared_ptr<VORNKeyStoreKey>& keyStoreKey);

  /// The UTF-8 bytes of the text.
  static Bytes keyStringToData(std::string_view text);

  VORNGeneratedKeyStore& generatedKeyStore() noexcept { return *generatedKeyStore_; }

  VORNKeyStoreManager(const VORNKeyStoreManager&) = delete;
  VORNKeyStoreManager& operator=(const VORNKeyStoreManager&) = delete;

 private:
  VORNKeyStoreManager();
  ~VORNKeyStoreManager() = default;
  void initializeKeyStores();

  std::recursive_mutex mutex_;  // serialises retrieval and storing
  std::shared_ptr<VORNGeneratedKeyStore> generatedKeyStore_;
};

}  // namespace vorn

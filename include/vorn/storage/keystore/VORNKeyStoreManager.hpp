// The entry point of the key store: hands out named symmetric keys, creating them on request,
// and keeps the key-store key current (an EC-backed secure key labelled "default"; an older
// plain key-store key is replaced on start).
//
// Start reads the key-store key and makes one only when the key store answers that there is
// none. While the key store cannot be read, nothing is made, replaced or deleted: retrieval
// answers null, and the next call tries to start again. Every decision to create or change
// key material is taken inside an exclusive section of the key store, on what is stored
// then, so two processes sharing the store (an app and its extension) never lose each other's
// keys.
//
// Ownership: holds the KeychainItems and BaseAppIdentifier its store works on. shared() and
// sharedInstance() are the instance on the current Platform's stores, made on first use (and
// again after another Platform is installed), never destroyed.
//
// Thread safety: every operation may be called from any thread; each runs in an exclusive
// section of the key store and, inside it, under the manager's re-entrant lock.
#pragma once

#include <functional>
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
  static std::shared_ptr<VORNKeyStoreManager> shared();

  /// Starts the key store on these stores (initializeKeyStores).
  VORNKeyStoreManager(std::shared_ptr<KeychainItems> items,
                      std::shared_ptr<BaseAppIdentifier> baseAppIdentifier);
  ~VORNKeyStoreManager();

  VORNKeyStoreManager(const VORNKeyStoreManager&) = delete;
  VORNKeyStoreManager& operator=(const VORNKeyStoreManager&) = delete;

  /// The key of `label` (stored under keyLabelForBaseLabel(label)); with `autoCreate` a new
  /// key is made and stored when the store has none. Null for no label, no key, or a key
  /// store that cannot be read now.
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

 private:
  // Runs `body` in a section under mutex_, once started when `needsStart`; false when it did
  // not run.
  bool run(bool needsStart, const std::function<void()>& body);
  // initializeKeyStores, inside a section: true once the key-store key is in place.
  bool startIfNeeded();
  bool installDefaultKey(const std::shared_ptr<VORNKeyStoreKey>& current);

  const std::shared_ptr<KeychainItems> items_;
  const std::shared_ptr<VORNGeneratedKeyStore> generatedKeyStore_;
  std::recursive_mutex mutex_;  // serialises retrieval and storing
  bool started_ = false;        // guarded by mutex_
};

}  // namespace vorn

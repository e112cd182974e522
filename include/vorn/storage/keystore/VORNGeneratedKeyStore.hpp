// The key store the SDK uses: item names carry the base application identifier, and its
// key-store key is read from the keychain once and then cached. A key-store key that could
// not be read is not cached (it is read again on the next call), and never replaced.
//
// Ownership: as VORNKeyStore; the default constructor uses the current Platform's stores.
// Thread safety: the key-store key and its replacement are guarded by the store's lock,
// inside an exclusive section of the key store.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/storage/keystore/VORNKeyStore.hpp"

namespace vorn {

inline constexpr std::string_view kGeneratedKeystoreKeychainId =
    "com.quorvantis.keystore.generatedKeystoreKeychainId";
inline constexpr std::string_view kGeneratedKeystoreDataArchive =
    "com.quorvantis.keystore.generatedKeystoreDataArchive";
inline constexpr std::string_view kGeneratedKeystoreEncryptionKeyId =
    "com.quorvantis.keystore.generatedKeystoreEncryptionKeyId";
inline constexpr std::string_view kGeneratedKeystoreEncryptionKeyDataArchive =
    "com.quorvantis.keystore.generatedKeystoreEncryptionKeyDataArchive";
inline constexpr std::string_view kGeneratedKeyLabelSuffix = "Generated";

class VORN_API VORNGeneratedKeyStore : public VORNKeyStore {
 public:
  VORNGeneratedKeyStore() = default;
  VORNGeneratedKeyStore(std::shared_ptr<KeychainItems> items,
                        std::shared_ptr<BaseAppIdentifier> baseAppIdentifier);

  std::string storeKeychainIdentifier() const override;
  std::string storeDataArchiveKey() const override;
  std::string encryptionKeyKeychainIdentifier() const override;
  std::string encryptionKeyDataArchiveKey() const override;
  /// The cached key, read from the key item on first use; null when there is none or it
  /// cannot be read now.
  std::shared_ptr<VORNKeyStoreKey> keyStoreKey() override;
  /// The cached key when there is one, else read from the key item now.
  ReadResult<std::shared_ptr<VORNKeyStoreKey>> readKeyStoreKey() override;
  /// The key as stored now, whatever is cached (another process may have stored one).
  ReadResult<std::shared_ptr<VORNKeyStoreKey>> reloadKeyStoreKey();
  /// Re-encrypts the dictionary with the new key (or deletes it when it cannot be read with
  /// the current one), stores the new key (null deletes the key item) and caches it.
  void setKeyStoreKey(std::shared_ptr<VORNKeyStoreKey> key) override;
  /// setKeyStoreKey(), telling whether it could: false, with nothing changed, when the current
  /// key or the dictionary could not be read.
  bool replaceKeyStoreKey(std::shared_ptr<VORNKeyStoreKey> key);
  bool keyStoreAvailable() const override { return true; }
  bool keyStoreEnabled() const override { return true; }
  /// "<text>__Generated".
  std::string keyLabelForString(std::string_view text) const override;

 private:
  ReadResult<std::shared_ptr<VORNKeyStoreKey>> readKeyItem();
  void cache(std::shared_ptr<VORNKeyStoreKey> key);

  std::shared_ptr<VORNKeyStoreKey> keyStoreKey_;  // guarded by mutex_
  bool keyStoreKeyRead_ = false;                  // guarded by mutex_
};

}  // namespace vorn

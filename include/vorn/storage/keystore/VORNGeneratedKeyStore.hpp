// The key store the SDK uses: item names carry the base application identifier, and its
// key-store key is read from the keychain once and then cached.
//
// Thread-safe: the key-store key and its replacement are guarded by the store's lock.
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

  std::string storeKeychainIdentifier() const override;
  std::string storeDataArchiveKey() const override;
  std::string encryptionKeyKeychainIdentifier() const override;
  std::string encryptionKeyDataArchiveKey() const override;
  /// The cached key, read from the key item on first use; null when there is none.
  std::shared_ptr<VORNKeyStoreKey> keyStoreKey() override;
  /// Re-encrypts the dictionary with the new key (or deletes it when it cannot be read with
  /// the current one), stores the new key (null deletes the key item) and caches it.
  void setKeyStoreKey(std::shared_ptr<VORNKeyStoreKey> key) override;
  bool keyStoreAvailable() const override { return true; }
  bool keyStoreEnabled() const override { return true; }
  /// "<text>__Generated".
  std::string keyLabelForString(std::string_view text) const override;

 private:
  std::shared_ptr<VORNKeyStoreKey> keyStoreKey_;  // guarded by mutex_
  bool keyStoreKeyRead_ = false;                  // guarded by mutex_
};

}  // namespace vorn

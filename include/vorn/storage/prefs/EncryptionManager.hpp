// EncryptionManager: the one way the SDK encrypts text at rest.
//
// Each feature module's components hold their own manager, bound to the module's symmetric
// key from the key store (label "push" or "cdp", stored as push__Generated / cdp__Generated).
// Text is turned into the platform's "unicode" bytes (see UnicodeEncoding.hpp) and
// encrypted with AES-256-CBC under the key's fixed vector, with nothing stored beside the
// ciphertext: equal texts under one key give equal bytes, which is what lets secure
// preferences find an entry by its encrypted key.
//
// Every failure (no key, text that is not UTF-8, bytes that do not decrypt or are not
// UTF-16) gives no value; the causes are logged by the key layer below. A module's manager
// whose key store could not be read at construction asks it again on each later call, until
// it has the key.
//
// Ownership: held by std::shared_ptr and shared by the module's StorageManager and
// SecurePrefs; a module's manager holds the key store manager it asks (the shared one unless
// given). Thread safety: use from any thread; the key, once had, never changes.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/storage/crypto/VORNEncryptionKey.hpp"
#include "vorn/storage/keystore/VORNKeyStoreManager.hpp"

namespace vorn {

class VORN_API EncryptionManager {
 public:
  /// Binds to the module's key, creating it in the shared key store when it does not exist
  /// yet.
  explicit EncryptionManager(ModuleName module);
  /// The same with the given key store.
  EncryptionManager(ModuleName module, std::shared_ptr<VORNKeyStoreManager> keyStore);
  /// Binds to a key the caller already has; a null key makes every call give no value.
  explicit EncryptionManager(std::shared_ptr<const VORNEncryptionKey> key);

  EncryptionManager(const EncryptionManager&) = delete;
  EncryptionManager& operator=(const EncryptionManager&) = delete;

  /// The module's key; null when the key store could not give one (yet).
  std::shared_ptr<const VORNEncryptionKey> encryptionKey() const;
  /// Whether this manager will never have a key: it was given none, and has no module key to
  /// ask for. Nothing it encrypts can be stored, so nothing stored can be lost either.
  bool isKeyless() const;

  /// encrypt(string:): the ciphertext of the text's unicode bytes.
  std::optional<Bytes> encrypt(std::string_view string) const;
  /// decrypt(stringData:): the text whose unicode bytes `stringData` encrypts.
  std::optional<std::string> decrypt(ByteView stringData) const;

 private:
  const std::optional<ModuleName> module_;
  const std::shared_ptr<VORNKeyStoreManager> keyStore_;
  mutable std::mutex mutex_;
  mutable std::shared_ptr<const VORNEncryptionKey> encryptionKey_;  // guarded by mutex_
};

}  // namespace vorn

// KeychainItems: the key store the keychain layer works on, and its cache of shared item
// objects (VORNKeychainItemWrapper), one per (service, account).
//
// Ownership: holds its KeychainStore, shared with whoever else uses it, and the cached items;
// an item holds the store, not this object. shared() is the instance on the current
// Platform's keychain, made again after another Platform is installed and never destroyed;
// the class operations of VORNKeychainItemWrapper forward to it. Tests make their own on any
// store.
//
// Exclusive sections: exclusively() runs code under the store's lock across processes.
// Code that decides whether to create, change or delete shared key material does so inside a
// section, on items read again from the store there (readItem()), never on cached copies:
// another process may have changed them since they were cached.
//
// Lock order: a section is always taken before an item's lock, and no lock of this layer is
// held while waiting for the store outside a section.
//
// Thread safety: every member function may be called from any thread.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/platform/KeychainStore.hpp"
#include "vorn/platform/ReadResult.hpp"

namespace vorn {

class VORNKeychainItemWrapper;

class VORN_API KeychainItems {
 public:
  explicit KeychainItems(std::shared_ptr<KeychainStore> store);
  /// The instance on the current Platform's keychain.
  static std::shared_ptr<KeychainItems> shared();

  KeychainItems(const KeychainItems&) = delete;
  KeychainItems& operator=(const KeychainItems&) = delete;

  const std::shared_ptr<KeychainStore>& store() const noexcept { return store_; }

  /// The shared object for (identifier, account), made and read on first request.
  std::shared_ptr<VORNKeychainItemWrapper> item(
      std::string_view identifier, std::optional<std::string_view> account = std::nullopt);
  /// The shared object, read from the store now: just made, or read again when cached. An
  /// error (the object keeping its earlier copy) when the store could not be read.
  ReadResult<std::shared_ptr<VORNKeychainItemWrapper>> readItem(
      std::string_view identifier, std::optional<std::string_view> account = std::nullopt);
  /// Empties the cache; objects already handed out stay valid for their holders.
  void reset();

  /// Runs `body` in the store's exclusive section; the section's status (an error means
  /// `body` did not run, or its changes may not have been stored).
  OSStatus exclusively(const std::function<void()>& body);

 private:
  // The cached object and whether this call made it.
  std::pair<std::shared_ptr<VORNKeychainItemWrapper>, bool> cachedOrMade(
      std::string_view identifier, std::optional<std::string_view> account);

  const std::shared_ptr<KeychainStore> store_;
  std::mutex mutex_;
  std::map<std::string, std::shared_ptr<VORNKeychainItemWrapper>, std::less<>>
      items_;  // guarded by mutex_
};

}  // namespace vorn

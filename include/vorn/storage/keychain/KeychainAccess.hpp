// KeychainAccess: the start-up checks of the key store (the write, read and availability
// probes of KeyChainWrapper) and the one-time accessibility migration of the SDK's own items.
//
// The availability probe makes up to durations::kKeyStoreProbeAttempts write-then-read
// probes, durations::kKeyStoreProbeInterval apart (scaled in tests), so its worst case is
// about five seconds. The probes and the migration log in category sdk.
//
// Ownership: holds the KeychainItems whose store it probes and migrates, the base application
// identifier that names the SDK's services, and the defaults store with the migration flag.
// shared() is the instance on the current Platform's stores, made again after another
// Platform is installed and never destroyed; the class operations of KeyChainWrapper and of
// VORNKeychainItemWrapper forward to it.
//
// Thread safety: every member function may be called from any thread and blocks its caller
// while it runs; the migration runs in an exclusive section of the key store.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/platform/DefaultsStore.hpp"
#include "vorn/storage/keychain/BaseAppIdentifier.hpp"
#include "vorn/storage/keychain/KeychainItems.hpp"

namespace vorn {

class VORN_API KeychainAccess {
 public:
  KeychainAccess(std::shared_ptr<KeychainItems> items,
                 std::shared_ptr<BaseAppIdentifier> baseAppIdentifier,
                 std::shared_ptr<DefaultsStore> defaults);
  static std::shared_ptr<KeychainAccess> shared();

  /// Adds and deletes a probe item with accessibility `accessible`; false (with a fault log
  /// line) when the add fails, including when a probe item was left behind.
  bool checkWriteAccess(std::string_view accessible) const;
  /// Reads each of the SDK's services; false (with a fault log line) at the first status
  /// other than success and not found.
  bool checkReadAccess() const;
  /// True as soon as one attempt writes and reads, false after the last attempt fails.
  bool isKeychainAccessible() const;
  /// Runs the migration unless the flag says it already succeeded; sets the flag when it
  /// succeeds. Answers whether the items now carry the SDK's accessibility.
  bool migrateKeychainAccessibilityIfNeeded() const;
  /// Gives every item of the SDK's services the accessibility `accessible`; false at the first
  /// read error (other than not found) or update error, or when the services cannot be named.
  bool updateKeychainAccessibleAttribute(std::string_view accessible) const;
  /// The SDK's own services, in the order the migration and the read probe visit them; named
  /// with an empty base application identifier while it cannot be had.
  std::vector<std::string> keychainServiceList() const;

 private:
  // The services, or nothing while the base application identifier cannot be had.
  std::optional<std::vector<std::string>> namedServices() const;

  const std::shared_ptr<KeychainItems> items_;
  const std::shared_ptr<BaseAppIdentifier> baseAppIdentifier_;
  const std::shared_ptr<DefaultsStore> defaults_;
};

}  // namespace vorn

// KeyChainWrapper: start-up checks of the key store. Stateless; every operation is a class
// operation that may be called from any thread (each call blocks its caller while it runs).
//
// The availability probe is what SDK initialisation calls after the accessibility migration:
// up to durations::kKeyStoreProbeAttempts write-then-read probes, durations::
// kKeyStoreProbeInterval apart (scaled in tests), so its worst case is about five seconds.
// The probes and the migration log in category sdk.
//
// Ownership: the class operations forward to KeychainAccess::shared(), which holds the current
// Platform's stores; code that has its own stores uses a KeychainAccess made on them.
#pragma once

#include <string_view>

#include "vorn/base/Export.hpp"

namespace vorn {

/// The user-defaults flag (standard suite) that records a finished accessibility migration.
inline constexpr std::string_view kAccessibilityMigratedKey =
    "com.quorvantis.tessarine.VORNSdk.isAccessibilityMigrated";

class VORN_API KeyChainWrapper {
 public:
  KeyChainWrapper() = default;

  /// Adds and deletes a probe item with accessibility `accessible`; false (with a fault log
  /// line) when the add fails, including when a probe item was left behind.
  static bool checkWriteAccess(std::string_view accessible);
  /// Reads each of the SDK's services; false (with a fault log line) at the first status
  /// other than success and not found.
  static bool checkReadAccess();
  /// The availability probe: true as soon as one attempt writes and reads, false after the
  /// last attempt fails.
  static bool isKeychainAccessible();
  /// Runs the accessibility migration unless the flag says it already succeeded; sets the
  /// flag when it succeeds. Answers whether the items now carry the SDK's accessibility.
  static bool migrateKeychainAccessibilityIfNeeded();
};

}  // namespace vorn

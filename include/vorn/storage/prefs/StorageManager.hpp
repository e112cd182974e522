// StorageManager: names a feature module's storage and hands out its SecurePrefs.
//
// Storage names are "com.quorvantis.tessarine_" + application id + "_" + registration id +
// "_" + name. The registration id is this installation's id for the module: on
// construction it is read from the shared suite
// "com.quorvantis.tessarine_unified_sdk_registration" under "registrationId", or made (an
// upper-case random UUID) and stored there. The entry is encrypted with the module's key,
// so each module keeps its own id in the shared suite.
//
// A registration id that cannot be read (the store or the module's key not available) is
// never replaced by a new one: the manager logs it, reads again on the next use, and until
// then answers "" and hands out SecurePrefs that store and read nothing. A new id is made in
// an exclusive section of the key store, after reading the entry again there, so two
// processes starting one module together keep one id. Without an EncryptionManager (null) the
// manager logs an error and has no registration id.
//
// The file-protection setting is SDK-wide and only stored here; writers of files read it.
//
// Ownership: held by std::shared_ptr by the module's components; shares the module's
// EncryptionManager, and holds the defaults store its storage lives in and the key store
// whose section guards the registration id (the current Platform's, unless given). Thread
// safety: every call may come from any thread; the registration id lives in an Atomic cell.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/platform/DefaultsStore.hpp"
#include "vorn/platform/KeychainStore.hpp"
#include "vorn/platform/ReadResult.hpp"
#include "vorn/runtime/Atomic.hpp"
#include "vorn/storage/prefs/EncryptionManager.hpp"
#include "vorn/storage/prefs/FileProtectionType.hpp"
#include "vorn/storage/prefs/SecurePrefs.hpp"

namespace vorn {

struct Platform;

class VORN_API StorageManager {
 public:
  static constexpr std::string_view kStorageNamePrefix = "com.quorvantis.tessarine_";
  static constexpr std::string_view kRegistrationSuite =
      "com.quorvantis.tessarine_unified_sdk_registration";
  static constexpr std::string_view kRegistrationIdKey = "registrationId";

  /// Reads or creates the registration id in the current Platform's defaults store, which
  /// this manager and its SecurePrefs keep using (the stores are taken here, once).
  StorageManager(std::shared_ptr<EncryptionManager> encryptionManager, std::string moduleAppId);
  /// The same on the given stores.
  StorageManager(std::shared_ptr<EncryptionManager> encryptionManager, std::string moduleAppId,
                 std::shared_ptr<DefaultsStore> defaults, std::shared_ptr<KeychainStore> keychain);

  StorageManager(const StorageManager&) = delete;
  StorageManager& operator=(const StorageManager&) = delete;

  const std::string& moduleAppId() const noexcept { return moduleAppId_; }
  const std::shared_ptr<EncryptionManager>& encryptionManager() const noexcept {
    return encryptionManager_;
  }

  /// The registration id; "" while it cannot be read.
  std::string getRegistrationId() const;
  /// A new SecurePrefs on the suite getFilenameForModuleInstallation(name).
  std::shared_ptr<SecurePrefs> getOrCreateSecurePrefs(std::string_view name) const;
  /// The storage name of `fileName` for this application, installation and module.
  std::string getFilenameForModuleInstallation(std::string_view fileName) const;

  /// SDK-wide; completeUntilFirstUserAuthentication until a host sets it.
  static void setFileSystemProtectionType(std::optional<FileProtectionType> fileProtectionType);
  static std::optional<FileProtectionType> fileSystemProtectionType();

 private:
  StorageManager(std::shared_ptr<EncryptionManager> encryptionManager, std::string moduleAppId,
                 const std::shared_ptr<const Platform>& platform);
  // The registration id, read (or made) now when it is not known yet.
  std::optional<std::string> registration() const;
  ReadResult<std::string> loadOrCreateRegistrationId() const;
  ReadResult<std::string> storedOrNewRegistrationId() const;

  const std::string moduleAppId_;
  const std::shared_ptr<EncryptionManager> encryptionManager_;
  const std::shared_ptr<DefaultsStore> defaults_;
  const std::shared_ptr<KeychainStore> keychain_;
  mutable Atomic<std::optional<std::string>> registrationId_;
};

}  // namespace vorn

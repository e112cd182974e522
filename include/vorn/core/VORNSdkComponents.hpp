// VORNSdkComponents: the services one feature module reaches the core through.
//
// One set is made per module start: an EncryptionManager bound to the module's key, a
// StorageManager naming the module's storage after the application identifier of its
// configuration, the behaviour manager, and a factory of network managers for the module.
//
// The behaviour and network layers are not part of this build yet: behaviorManager() and
// createNetworkManager() say so in a log line and give null, and modules must treat null as
// "not available". The types are only declared here so that module code written against
// them keeps compiling once those layers land.
//
// Ownership: held by std::shared_ptr; the module keeps what it needs. Thread safety:
// immutable after construction; call from any thread.
#pragma once

#include <memory>

#include "vorn/base/Export.hpp"
#include "vorn/core/ModuleConfig.hpp"
#include "vorn/storage/prefs/EncryptionManager.hpp"
#include "vorn/storage/prefs/StorageManager.hpp"

namespace vorn {

class Authenticator;
class BehaviorManager;
class NetworkManager;

class VORN_API VORNSdkComponents {
 public:
  /// The components of one start of the module `config` configures.
  static std::shared_ptr<VORNSdkComponents> create(const ModuleConfig& config);

  VORNSdkComponents(std::shared_ptr<EncryptionManager> encryptionManager,
                    std::shared_ptr<StorageManager> storageManager);

  const std::shared_ptr<EncryptionManager>& encryptionManager() const noexcept {
    return encryptionManager_;
  }
  const std::shared_ptr<StorageManager>& storageManager() const noexcept { return storageManager_; }
  /// Null, with a log line, until the behaviour layer is built in.
  std::shared_ptr<BehaviorManager> behaviorManager() const;
  /// A network manager for the module, using `authenticator` (may be null) for its auth
  /// header. Null, with a log line, until the network layer is built in.
  std::shared_ptr<NetworkManager> createNetworkManager(
      std::shared_ptr<Authenticator> authenticator) const;

 private:
  const std::shared_ptr<EncryptionManager> encryptionManager_;
  const std::shared_ptr<StorageManager> storageManager_;
};

}  // namespace vorn

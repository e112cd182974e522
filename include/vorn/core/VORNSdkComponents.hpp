// VORNSdkComponents: the services one feature module reaches the core through.
//
// One set is made per module start: an EncryptionManager bound to the module's key, a
// StorageManager naming the module's storage after the application identifier of its
// configuration, the shared behaviour manager, and a factory of network managers for the
// module. Every network manager of one module keeps its deadlines in the module's secure
// preferences named kNetworkPreferencesName, so a name blocked by one manager is blocked for
// the next one too, also after a restart.
//
// Ownership: held by std::shared_ptr; the module keeps what it needs. Thread safety:
// immutable after construction; call from any thread.
#pragma once

#include <memory>
#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/behavior/BehaviorManager.hpp"
#include "vorn/core/ModuleConfig.hpp"
#include "vorn/network/Authenticator.hpp"
#include "vorn/network/NetworkManager.hpp"
#include "vorn/storage/prefs/EncryptionManager.hpp"
#include "vorn/storage/prefs/StorageManager.hpp"

namespace vorn {

class VORN_API VORNSdkComponents {
 public:
  /// The name, within the module's storage, of the secure preferences holding its network
  /// managers' deadlines.
  static constexpr std::string_view kNetworkPreferencesName = "network";

  /// The components of one start of the module `config` configures.
  static std::shared_ptr<VORNSdkComponents> create(const ModuleConfig& config);

  VORNSdkComponents(std::shared_ptr<EncryptionManager> encryptionManager,
                    std::shared_ptr<StorageManager> storageManager);

  const std::shared_ptr<EncryptionManager>& encryptionManager() const noexcept {
    return encryptionManager_;
  }
  const std::shared_ptr<StorageManager>& storageManager() const noexcept { return storageManager_; }
  /// BehaviorManager::shared().
  std::shared_ptr<BehaviorManager> behaviorManager() const;
  /// A new network manager for the module, using `authenticator` (may be null) for its auth
  /// header. Without a storage manager it keeps no deadlines.
  std::shared_ptr<NetworkManager> createNetworkManager(
      std::shared_ptr<Authenticator> authenticator) const;

 private:
  const std::shared_ptr<EncryptionManager> encryptionManager_;
  const std::shared_ptr<StorageManager> storageManager_;
};

}  // namespace vorn

#include "vorn/core/VORNSdkComponents.hpp"

namespace vorn {

std::shared_ptr<VORNSdkComponents> VORNSdkComponents::create(const ModuleConfig& config) {
  auto encryptionManager = std::make_shared<EncryptionManager>(config.name());
  auto storageManager = std::make_shared<StorageManager>(encryptionManager, config.appId());
  return std::make_shared<VORNSdkComponents>(std::move(encryptionManager),
                                             std::move(storageManager));
}

VORNSdkComponents::VORNSdkComponents(std::shared_ptr<EncryptionManager> encryptionManager,
                                     std::shared_ptr<StorageManager> storageManager)
    : encryptionManager_(std::move(encryptionManager)),
      storageManager_(std::move(storageManager)) {}

std::shared_ptr<BehaviorManager> VORNSdkComponents::behaviorManager() const {
  return BehaviorManager::shared();
}

std::shared_ptr<NetworkManager> VORNSdkComponents::createNetworkManager(
    std::shared_ptr<Authenticator> authenticator) const {
  auto preferences =
      storageManager_ ? storageManager_->getOrCreateSecurePrefs(kNetworkPreferencesName) : nullptr;
  return NetworkManager::create(std::move(preferences), std::move(authenticator));
}

}  // namespace vorn

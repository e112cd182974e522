#include <thread>

#include "storage/keychain/PlatformShared.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/runtime/Durations.hpp"
#include "vorn/storage/keychain/KeyChainWrapper.hpp"
#include "vorn/storage/keychain/KeychainAccess.hpp"

namespace vorn {
namespace {

constexpr std::string_view kProbeService = "VORNSDKWriteAccessTest";
constexpr std::string_view kProbeAccount = "VORNSDKNoAccount";
constexpr std::string_view kProbeValue = "Write Test";

}  // namespace

KeychainAccess::KeychainAccess(std::shared_ptr<KeychainItems> items,
                               std::shared_ptr<BaseAppIdentifier> baseAppIdentifier,
                               std::shared_ptr<DefaultsStore> defaults)
    : items_(std::move(items)),
      baseAppIdentifier_(std::move(baseAppIdentifier)),
      defaults_(std::move(defaults)) {}

std::shared_ptr<KeychainAccess> KeychainAccess::shared() {
  return detail::sharedOnCurrentPlatform<KeychainAccess>([](const Platform& platform) {
    return std::make_shared<KeychainAccess>(KeychainItems::shared(), BaseAppIdentifier::shared(),
                                            platform.defaults);
  });
}

bool KeychainAccess::checkWriteAccess(std::string_view accessible) const {
  KeychainStore& store = *items_->store();
  KeychainItem probe;
  probe.service = std::string(kProbeService);
  probe.account = std::string(kProbeAccount);
  probe.data = KeychainData(kProbeValue.begin(), kProbeValue.end());
  probe.accessible = std::string(accessible);
  const OSStatus status = store.add(probe);
  if (status != errSecSuccess) {
    VORN_LOG_FAULT(LoggerCategory::sdk,
                   "Keychain Write Access Not Available, code: " + std::to_string(status));
    return false;
  }
  KeychainQuery sameItem;
  sameItem.service = probe.service;
  sameItem.account = probe.account;
  store.remove(sameItem);
  return true;
}

bool KeychainAccess::checkReadAccess() const {
  for (const std::string& service : keychainServiceList()) {
    KeychainQuery query;
    query.service = service;
    query.matchLimit = MatchLimit::one;
    query.returnAttributes = true;
    query.returnData = true;
    std::vector<KeychainItem> found;
    const OSStatus status = items_->store()->copyMatching(query, found);
    if (status != errSecSuccess && status != errSecItemNotFound) {
      VORN_LOG_FAULT(LoggerCategory::sdk,
                     "Keychain Read Access Not Available, code: " + std::to_string(status));
      return false;
    }
  }
  return true;
}

bool KeychainAccess::isKeychainAccessible() const {
  for (int attempt = 0; attempt < durations::kKeyStoreProbeAttempts; ++attempt) {
    if (checkWriteAccess(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly) && checkReadAccess())
      return true;
    std::this_thread::sleep_for(durations::scaled(durations::kKeyStoreProbeInterval));
  }
  return false;
}

bool KeychainAccess::migrateKeychainAccessibilityIfNeeded() const {
  if (defaults_->boolFor(DefaultsStore::kStandardSuite, kAccessibilityMigratedKey))
    return true;
  if (!updateKeychainAccessibleAttribute(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly)) {
    VORN_LOG_WARNING(LoggerCategory::sdk,
                     "Keychain Accessibility Migration Failed. Will attempt again on next "
                     "initialization");
    return false;
  }
  defaults_->setBool(DefaultsStore::kStandardSuite, true, kAccessibilityMigratedKey);
  VORN_LOG_DEBUG(LoggerCategory::sdk, "Keychain Accessibility Migration Complete");
  return true;
}

bool KeyChainWrapper::checkWriteAccess(std::string_view accessible) {
  return KeychainAccess::shared()->checkWriteAccess(accessible);
}

bool KeyChainWrapper::checkReadAccess() {
  return KeychainAccess::shared()->checkReadAccess();
}

bool KeyChainWrapper::isKeychainAccessible() {
  return KeychainAccess::shared()->isKeychainAccessible();
}

bool KeyChainWrapper::migrateKeychainAccessibilityIfNeeded() {
  return KeychainAccess::shared()->migrateKeychainAccessibilityIfNeeded();
}

}  // namespace vorn

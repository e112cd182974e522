#include "vorn/storage/keychain/KeyChainWrapper.hpp"

#include <thread>

#include "vorn/logging/Log.hpp"
#include "vorn/platform/Platform.hpp"
#include "vorn/runtime/Durations.hpp"
#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"

namespace vorn {
namespace {

constexpr std::string_view kProbeService = "VORNSDKWriteAccessTest";
constexpr std::string_view kProbeAccount = "VORNSDKNoAccount";
constexpr std::string_view kProbeValue = "Write Test";

}  // namespace

bool KeyChainWrapper::checkWriteAccess(std::string_view accessible) {
  const auto store = Platform::current()->keychain;
  KeychainItem probe;
  probe.service = std::string(kProbeService);
  probe.account = std::string(kProbeAccount);
  probe.data = KeychainData(kProbeValue.begin(), kProbeValue.end());
  probe.accessible = std::string(accessible);
  const OSStatus status = store->add(probe);
  if (status != errSecSuccess) {
    VORN_LOG_FAULT(LoggerCategory::sdk,
                   "Keychain Write Access Not Available, code: " + std::to_string(status));
    return false;
  }
  KeychainQuery sameItem;
  sameItem.service = probe.service;
  sameItem.account = probe.account;
  store->remove(sameItem);
  return true;
}

bool KeyChainWrapper::checkReadAccess() {
  const auto store = Platform::current()->keychain;
  for (const std::string& service : VORNKeychainItemWrapper::keychainServiceList()) {
    KeychainQuery query;
    query.service = service;
    query.matchLimit = MatchLimit::one;
    query.returnAttributes = true;
    query.returnData = true;
    std::vector<KeychainItem> found;
    const OSStatus status = store->copyMatching(query, found);
    if (status != errSecSuccess && status != errSecItemNotFound) {
      VORN_LOG_FAULT(LoggerCategory::sdk,
                     "Keychain Read Access Not Available, code: " + std::to_string(status));
      return false;
    }
  }
  return true;
}

bool KeyChainWrapper::isKeychainAccessible() {
  for (int attempt = 0; attempt < durations::kKeyStoreProbeAttempts; ++attempt) {
    if (checkWriteAccess(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly) && checkReadAccess())
      return true;
    std::this_thread::sleep_for(durations::scaled(durations::kKeyStoreProbeInterval));
  }
  return false;
}

bool KeyChainWrapper::migrateKeychainAccessibilityIfNeeded() {
  const auto defaults = Platform::current()->defaults;
  if (defaults->boolFor(DefaultsStore::kStandardSuite, kAccessibilityMigratedKey))
    return true;
  if (!VORNKeychainItemWrapper::updateKeychainAccessibleAttribute(
          kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly)) {
    VORN_LOG_WARNING(LoggerCategory::sdk,
                     "Keychain Accessibility Migration Failed. Will attempt again on next "
                     "initialization");
    return false;
  }
  defaults->setBool(DefaultsStore::kStandardSuite, true, kAccessibilityMigratedKey);
  VORN_LOG_DEBUG(LoggerCategory::sdk, "Keychain Accessibility Migration Complete");
  return true;
}

}  // namespace vorn

#include "vorn/logging/Log.hpp"
#include "vorn/storage/keychain/KeychainAccess.hpp"
#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"

namespace vorn {
namespace {

// Moves one service's items to `accessible`. Nothing when all went well, else the result.
std::optional<bool> migrateService(KeychainStore& store, const std::string& service,
                                   std::string_view accessible) {
  KeychainQuery query;
  query.service = service;
  query.matchLimit = MatchLimit::all;
  query.returnAttributes = true;
  query.returnData = true;
  std::vector<KeychainItem> items;
  const OSStatus status = store.copyMatching(query, items);
  if (status == errSecItemNotFound) {
    VORN_LOG_WARNING(LoggerCategory::sdk, "Keychain item not found. Skipping...");
    return std::nullopt;
  }
  if (status != errSecSuccess) {
    VORN_LOG_WARNING(LoggerCategory::sdk, "Cannot read the keychain: " + std::to_string(status));
    return false;
  }
  for (const KeychainItem& item : items) {
    const std::string current = item.accessible.value_or(std::string());
    if (current == accessible)
      continue;
    VORN_LOG_DEBUG(LoggerCategory::sdk,
                   "Updating item from '" + current + "' to '" + std::string(accessible) + "'.");
    KeychainQuery itemQuery;
    itemQuery.service = item.service.value_or(std::string());
    itemQuery.account = item.account.value_or(std::string());
    KeychainItem changes;
    changes.accessible = std::string(accessible);
    changes.data = item.data.value_or(KeychainData());
    const OSStatus updated = store.update(itemQuery, changes);
    if (updated != errSecSuccess) {
      VORNKeychainItemWrapper::logKeychainItemExceptionWithCode(
          1, "updateKeychainAccessibleAttribute: Error updating keychain item: " +
                 VORNKeychainItemWrapper::keychainErrorCodeString(updated) + ".");
      return false;
    }
    VORN_LOG_DEBUG(LoggerCategory::sdk,
                   "Updated Keychain accessibility attribute to: " + std::string(accessible));
  }
  return std::nullopt;
}

std::vector<std::string> servicesNamedWith(const std::string& base) {
  return {
      "com.quorvantis.security.baseappid.sim",
      "com.quorvantis.keystore.generatedKeystoreEncryptionKeyId_" + base,
      "com.quorvantis.keystore.generatedKeystoreKeychainId_" + base,
      "com.quorvantis.tessarine.VORNSdk_appVersion",
  };
}

}  // namespace

std::optional<std::vector<std::string>> KeychainAccess::namedServices() const {
  auto base = baseAppIdentifier_->identifier();
  if (!base.isFound())
    return std::nullopt;
  return servicesNamedWith(base.value());
}

std::vector<std::string> KeychainAccess::keychainServiceList() const {
  return namedServices().value_or(servicesNamedWith(""));
}

bool KeychainAccess::updateKeychainAccessibleAttribute(std::string_view accessible) const {
  // Without the identifier the key store's items cannot be named; skipping them would mark
  // the migration done with those items never moved.
  const auto services = namedServices();
  if (!services)
    return false;
  bool result = true;
  const OSStatus section = items_->exclusively([&] {
    for (const std::string& service : *services) {
      if (const auto stop = migrateService(*items_->store(), service, accessible)) {
        result = *stop;
        return;
      }
    }
  });
  return section == errSecSuccess && result;
}

std::vector<std::string> VORNKeychainItemWrapper::keychainServiceList() {
  return KeychainAccess::shared()->keychainServiceList();
}

bool VORNKeychainItemWrapper::updateKeychainAccessibleAttribute(std::string_view accessible) {
  return KeychainAccess::shared()->updateKeychainAccessibleAttribute(accessible);
}

}  // namespace vorn

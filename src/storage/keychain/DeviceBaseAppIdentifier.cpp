// The keychain variant of the base application identifier.
#include "vorn/base/Uuid.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/storage/keychain/BaseAppIdentifier.hpp"
#include "vorn/storage/keychain/VORNCrypto.hpp"
#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"

namespace vorn {

std::string BaseAppIdentifier::deviceBaseAppIdentifier() {
  const auto configured = configuredFlag();
  if (configured.isError())
    return "";
  if (!configured.value()) {
    VORN_LOG_DEBUG(LoggerCategory::encryption,
                   "Base app identifier not configured. Creating a new value.");
    return newDeviceIdentifier();
  }
  const auto item = items_->item(kBaseAppIdentifierKeychainService);
  // An item that cannot be read now may well hold the identifier: it is not replaced.
  if (item->readValueData().isError())
    return "";
  auto identifier = item->valueString();
  if (!identifier) {
    VORN_LOG_DEBUG(LoggerCategory::encryption,
                   "App id keychain data missing or corrupted. Attempting to reset.");
    setConfigured(false);
    setConfiguredThisLaunch(false);
    return newDeviceIdentifier();
  }
  return std::move(*identifier);
}

std::string BaseAppIdentifier::newDeviceIdentifier() {
  std::string identifier = makeUuidString();
  if (setDeviceBaseAppIdentifier(identifier)) {
    setConfigured(true);
    setConfiguredThisLaunch(true);
  } else {
    VORN_LOG_DEBUG(LoggerCategory::encryption,
                   "Could not persist the base app identifier. Returning in-memory value.");
  }
  return identifier;
}

bool BaseAppIdentifier::setDeviceBaseAppIdentifier(std::string_view identifier) {
  VORN_LOG_DEBUG(LoggerCategory::encryption, "Saving the new base app identifier to the keychain.");
  const auto item = items_->item(kBaseAppIdentifierKeychainService);
  OSStatus status = item->setValueString(identifier);
  if (status != errSecSuccess) {
    VORN_LOG_WARNING(LoggerCategory::encryption,
                     "Could not save the base app identifier to the keychain (result: " +
                         VORNKeychainItemWrapper::keychainErrorCodeString(status) + "). Retrying.");
    status = item->setValueString(identifier);
  }
  if (status != errSecSuccess) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Giving up on saving the base app identifier to the keychain (result: " +
                       VORNKeychainItemWrapper::keychainErrorCodeString(status) + ").");
    return false;
  }
  VORN_LOG_DEBUG(LoggerCategory::encryption,
                 "Successfully created a new base app identifier and stored it in the keychain.");
  return true;
}

}  // namespace vorn

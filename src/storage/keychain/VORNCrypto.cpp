#include "vorn/storage/keychain/VORNCrypto.hpp"

#include <atomic>

#include "vorn/base/Uuid.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/platform/Platform.hpp"
#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"

namespace vorn {
namespace {

// Whether the configured flag has been given its first value (from the stored identifier).
std::atomic<bool> configuredKnown{false};
std::atomic<bool> configured{false};
std::atomic<bool> configuredThisLaunch{false};

DefaultsSuite standardDefaults() {
  return Platform::current()->defaults->standard();
}

// An identifier stored by an earlier launch counts as configured, so the key store keeps its
// item names, and therefore its keys, across launches.
void loadConfiguredFlag() {
  if (configuredKnown.load(std::memory_order_acquire))
    return;
  const auto stored = standardDefaults().stringFor(kSimulatorBaseAppIdentifierKey);
  bool expected = false;
  configured.compare_exchange_strong(expected, stored && !stored->empty());
  configuredKnown.store(true, std::memory_order_release);
}

std::string newDeviceIdentifier() {
  std::string identifier = makeUuidString();
  if (VORNCrypto::setDeviceBaseAppIdentifier(identifier)) {
    VORNCrypto::setBaseAppIdentifierIsConfigured(true);
    VORNCrypto::setBaseAppIdentifierConfiguredThisLaunch(true);
  } else {
    VORN_LOG_DEBUG(LoggerCategory::encryption,
                   "Could not persist the base app identifier. Returning in-memory value.");
  }
  return identifier;
}

}  // namespace

std::string VORNCrypto::baseAppIdentifier() {
  return simulatorBaseAppIdentifier();
}

void VORNCrypto::setBaseAppIdentifier(std::string_view identifier) {
  setSimulatorBaseAppIdentifier(identifier);
}

std::string VORNCrypto::simulatorBaseAppIdentifier() {
  if (baseAppIdentifierIsConfigured())
    return standardDefaults().stringFor(kSimulatorBaseAppIdentifierKey).value_or("");
  std::string identifier = makeUuidString();
  setSimulatorBaseAppIdentifier(identifier);
  setBaseAppIdentifierIsConfigured(true);
  setBaseAppIdentifierConfiguredThisLaunch(true);
  return identifier;
}

void VORNCrypto::setSimulatorBaseAppIdentifier(std::string_view identifier) {
  standardDefaults().setString(identifier, kSimulatorBaseAppIdentifierKey);
}

std::string VORNCrypto::deviceBaseAppIdentifier() {
  if (!baseAppIdentifierIsConfigured()) {
    VORN_LOG_DEBUG(LoggerCategory::encryption,
                   "Base app identifier not configured. Creating a new value.");
    return newDeviceIdentifier();
  }
  auto identifier =
      VORNKeychainItemWrapper::itemWithIdentifier(kBaseAppIdentifierKeychainService)->valueString();
  if (!identifier) {
    VORN_LOG_DEBUG(LoggerCategory::encryption,
                   "App id keychain data missing or corrupted. Attempting to reset.");
    setBaseAppIdentifierIsConfigured(false);
    setBaseAppIdentifierConfiguredThisLaunch(false);
    return newDeviceIdentifier();
  }
  return std::move(*identifier);
}

bool VORNCrypto::setDeviceBaseAppIdentifier(std::string_view identifier) {
  VORN_LOG_DEBUG(LoggerCategory::encryption, "Saving the new base app identifier to the keychain.");
  const auto item = VORNKeychainItemWrapper::itemWithIdentifier(kBaseAppIdentifierKeychainService);
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

bool VORNCrypto::baseAppIdentifierIsConfigured() {
  loadConfiguredFlag();
  return configured.load();
}

void VORNCrypto::setBaseAppIdentifierIsConfigured(bool value) noexcept {
  configuredKnown.store(true);
  configured.store(value);
}

bool VORNCrypto::baseAppIdentifierConfiguredThisLaunch() noexcept {
  return configuredThisLaunch.load();
}

void VORNCrypto::setBaseAppIdentifierConfiguredThisLaunch(bool value) noexcept {
  configuredThisLaunch.store(value);
}

}  // namespace vorn

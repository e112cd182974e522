#include "vorn/storage/keychain/VORNCrypto.hpp"

#include "vorn/storage/keychain/BaseAppIdentifier.hpp"

namespace vorn {

std::string VORNCrypto::baseAppIdentifier() {
  return BaseAppIdentifier::shared()->baseAppIdentifier();
}

void VORNCrypto::setBaseAppIdentifier(std::string_view identifier) {
  setSimulatorBaseAppIdentifier(identifier);
}

std::string VORNCrypto::simulatorBaseAppIdentifier() {
  return BaseAppIdentifier::shared()->baseAppIdentifier();
}

void VORNCrypto::setSimulatorBaseAppIdentifier(std::string_view identifier) {
  BaseAppIdentifier::shared()->setSimulatorBaseAppIdentifier(identifier);
}

std::string VORNCrypto::deviceBaseAppIdentifier() {
  return BaseAppIdentifier::shared()->deviceBaseAppIdentifier();
}

bool VORNCrypto::setDeviceBaseAppIdentifier(std::string_view identifier) {
  return BaseAppIdentifier::shared()->setDeviceBaseAppIdentifier(identifier);
}

bool VORNCrypto::baseAppIdentifierIsConfigured() {
  return BaseAppIdentifier::shared()->isConfigured();
}

void VORNCrypto::setBaseAppIdentifierIsConfigured(bool configured) noexcept {
  BaseAppIdentifier::shared()->setConfigured(configured);
}

bool VORNCrypto::baseAppIdentifierConfiguredThisLaunch() noexcept {
  return BaseAppIdentifier::shared()->configuredThisLaunch();
}

void VORNCrypto::setBaseAppIdentifierConfiguredThisLaunch(bool configured) noexcept {
  BaseAppIdentifier::shared()->setConfiguredThisLaunch(configured);
}

}  // namespace vorn

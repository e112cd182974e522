#include "vorn/sdk/VORNSdk.hpp"

#include "sdk/SdkVersion.hpp"
#include "sdk/Startup.hpp"
#include "sdk/StartupRecord.hpp"
#include "sdk/StateSnapshot.hpp"
#include "sdk/Teardown.hpp"
#include "vorn/messaging/EventBus.hpp"

namespace vorn {

void VORNSdk::initializeSdk(Config config) {
  detail::startupRecord();
  detail::startupQueue().async([config = std::move(config)] { detail::runStartup(config); });
}

void VORNSdk::tearDownModule(ModuleName name) {
  detail::startupRecord();
  detail::tearDownModule(name);
}

InitializationState VORNSdk::initializationState() {
  return detail::startupRecord().initializationState.read();
}

std::optional<Config> VORNSdk::lastAppliedConfiguration() {
  return detail::startupRecord().lastAppliedConfig.read();
}

std::string VORNSdk::state() {
  detail::startupRecord();
  return detail::readableState(detail::stateJson());
}

void VORNSdk::track(std::shared_ptr<const Event> event) {
  detail::startupRecord();
  EventBus::publish(MessageProducer::sdk, std::move(event));
}

std::shared_ptr<CDP> VORNSdk::cdp() {
  detail::startupRecord();
  return CDP::shared();
}

std::shared_ptr<PUSH> VORNSdk::mp() {
  detail::startupRecord();
  return PUSH::shared();
}

std::shared_ptr<IDENTITY> VORNSdk::identity() {
  return detail::startupRecord().identity.read();
}

void VORNSdk::setIdentity(std::shared_ptr<IDENTITY> identity) {
  if (!identity)
    return;
  detail::startupRecord().identity.mutate(
      [&](std::shared_ptr<IDENTITY>& held) { held.swap(identity); });
}

void VORNSdk::requestPushSdk(PUSH::Request block) {
  mp()->requestPushSdk(std::move(block));
}

std::string VORNSdk::sdkVersion() {
  return detail::sdkVersion();
}

void VORNSdk::setSdkVersion(std::string version) {
  detail::setSdkVersion(std::move(version));
}

}  // namespace vorn

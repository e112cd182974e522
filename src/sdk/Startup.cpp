#include "sdk/Startup.hpp"

#include <memory>
#include <string>

#include "sdk/ModuleReady.hpp"
#include "sdk/ModuleStart.hpp"
#include "sdk/SdkVersion.hpp"
#include "sdk/StartupRecord.hpp"
#include "sdk/Teardown.hpp"
#include "vorn/facades/FacadeSources.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/runtime/DispatchGroup.hpp"
#include "vorn/runtime/Durations.hpp"
#include "vorn/storage/keychain/KeyChainWrapper.hpp"

namespace vorn::detail {
namespace {

bool isReady(InitializationState state) {
  return rawValue(state) > rawValue(InitializationState::INITIALIZING);
}

void setState(InitializationState value) {
  startupRecord().initializationState.mutate(
      [value](InitializationState& state) { state = value; });
}

// A repeat of the configuration that made the SDK ready only tells the new callbacks so.
bool skipsRepeat(const Config& config) {
  const std::optional<Config> last = startupRecord().lastAppliedConfig.read();
  if (!last || !isReady(startupRecord().initializationState.read()) || !(config == *last))
    return false;
  VORN_LOG_DEBUG(LoggerCategory::sdk,
                 "Configurations are the same as the previous initialization. Skipping "
                 "initialization.");
  for (const auto& moduleConfig : config.moduleConfigs())
    callAll(config.completions(moduleConfig->name()), OperationResult::success);
  return true;
}

bool keyStoreReady() {
  KeyChainWrapper::migrateKeychainAccessibilityIfNeeded();
  if (KeyChainWrapper::isKeychainAccessible())
    return true;
  VORN_LOG_FAULT(LoggerCategory::sdk, "Keychain is Not Accessible. VORNSDK will Not initialize!");
  return false;
}

void tearDownPrevious() {
  const std::optional<Config> last = startupRecord().lastAppliedConfig.read();
  if (!last)
    return;
  VORN_LOG_DEBUG(LoggerCategory::sdk,
                 "Reinitializing sdk. Existing module instances will be replaced.");
  tearDown(*last);
}

// Each module leaves the group once, with whatever outcome reaches its callbacks. The group
// is shared with those callbacks because an outcome may arrive after the wait gave up.
void startModules(const Config& config, const std::shared_ptr<DispatchGroup>& group) {
  for (const auto& moduleConfig : config.moduleConfigs()) {
    std::vector<CompletionCallback> callbacks = config.completions(moduleConfig->name());
    group->enter();
    callbacks.push_back([group](OperationResult) { group->leave(); });
    startModule(facade(moduleConfig->name()), moduleConfig, std::move(callbacks));
  }
}

void remember(const Config& config) {
  if (!isReady(startupRecord().initializationState.read()))
    return;
  std::optional<Config> released = config;
  startupRecord().lastAppliedConfig.mutate(
      [&](std::optional<Config>& last) { released.swap(last); });
}

}  // namespace

DispatchQueue& startupQueue() {
  static auto* const queue = new DispatchQueue("com.quorvantis.tessarine.vornsdk.initializesdk");
  return *queue;
}

void runStartup(const Config& config) {
  if (skipsRepeat(config) || !keyStoreReady())
    return;
  tearDownPrevious();
  setState(InitializationState::INITIALIZING);
  const auto group = std::make_shared<DispatchGroup>();
  VORN_LOG_DEBUG(LoggerCategory::sdk, "SDK initializing with version: " + sdkVersion());
  startModules(config, group);
  if (group->wait(durations::scaled(durations::kStartupWait)) == DispatchGroupWaitResult::success) {
    setState(InitializationState::READY);
  } else {
    VORN_LOG_DEBUG(LoggerCategory::sdk, "Module initialization timeout exceeded");
    tearDown(config);
  }
  remember(config);
}

}  // namespace vorn::detail

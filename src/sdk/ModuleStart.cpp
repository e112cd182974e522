#include "sdk/ModuleStart.hpp"

#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "sdk/HeldLines.hpp"
#include "sdk/ModuleLookup.hpp"
#include "sdk/ModuleReady.hpp"
#include "vorn/core/ModuleInitializer.hpp"
#include "vorn/identity/CoreIdentity.hpp"

namespace vorn::detail {
namespace {

bool mayStart(ModuleStatus status) {
  return status == ModuleStatus::inactive || status == ModuleStatus::failed ||
         status == ModuleStatus::cancelled;
}

// Runs under the facade's initialization lock, so that the status read, its change to
// `initializing` and the class check are one step for that facade.
std::optional<ModuleClass> claimFacade(ModuleFacade& facade, HeldLines& lines) {
  const ModuleStatus status = facade.getStatus();
  if (!mayStart(status)) {
    lines.add(LogLevel::debug, LoggerCategory::interface, [&] {
      return "Skipping initialization as the SDK is in a state other than inactive. Current "
             "Status: " +
             std::string(rawValue(status));
    });
    return std::nullopt;
  }
  facade.setStatus(ModuleStatus::initializing);
  lines.add(LogLevel::debug, LoggerCategory::sdk, [&] {
    const Compatibility& range = *facade.compatibility();
    return "Starting Module initialization: " + description(facade.name()) +
           " with version compatibility: " + range.min() + " - " + range.max();
  });
  std::optional<ModuleClass> moduleClass = findCompatibleClass(facade, lines);
  if (!moduleClass)
    facade.setStatus(ModuleStatus::failed);
  return moduleClass;
}

// The module's storage manager reads or creates the installation's registration id when the
// components are made, just before the module's factory runs; the identity reports it from
// then on.
ModuleClass reportingRegistrationId(ModuleClass moduleClass) {
  moduleClass.initModule = [factory = std::move(moduleClass.initModule)](
                               const std::shared_ptr<const ModuleConfig>& config,
                               const std::shared_ptr<VORNSdkComponents>& components) {
    if (components && components->storageManager())
      CoreIdentity::shared().setRegistrationId(components->storageManager()->getRegistrationId());
    return factory(config, components);
  };
  return moduleClass;
}

std::shared_ptr<ModuleInitializer> makeInitializer(ModuleFacade& facade,
                                                   std::shared_ptr<const ModuleConfig> config,
                                                   ModuleClass moduleClass,
                                                   std::vector<CompletionCallback> callbacks) {
  auto initializer = std::make_shared<ModuleInitializer>(
      std::move(config), reportingRegistrationId(std::move(moduleClass)),
      [&facade](std::shared_ptr<VORNModule> module) { facade.attachModule(std::move(module)); });
  // The completion holds the initializer until it has run; running it drops that hold.
  initializer->setCompletionBlock(
      [initializer, &facade, callbacks = std::move(callbacks)]() mutable {
        handleModuleReady(*initializer, facade, std::move(callbacks));
      });
  return initializer;
}

}  // namespace

void startModule(ModuleFacade& facade, std::shared_ptr<const ModuleConfig> config,
                 std::vector<CompletionCallback> callbacks) {
  HeldLines lines;
  std::optional<ModuleClass> moduleClass;
  {
    std::lock_guard lock(facade.initializationLock());
    moduleClass = claimFacade(facade, lines);
  }
  lines.write();
  if (!moduleClass)
    return;
  ModuleInitializer::addToFreshQueue(
      makeInitializer(facade, std::move(config), std::move(*moduleClass), std::move(callbacks)));
}

}  // namespace vorn::detail

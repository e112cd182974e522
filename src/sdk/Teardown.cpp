#include "sdk/Teardown.hpp"

#include <memory>

#include "sdk/StartupRecord.hpp"
#include "vorn/facades/CDP.hpp"
#include "vorn/facades/FacadeSources.hpp"
#include "vorn/facades/PUSH.hpp"

namespace vorn::detail {
namespace {

// The push facade also drops the requests still waiting for a module.
void tearDownPush(const std::shared_ptr<VORNModule>& module) {
  if (!module)
    return;
  module->tearDown();
  PUSH::shared()->tearDown();
  PUSH::shared()->clearModule();
}

}  // namespace

void tearDownModule(ModuleName name) {
  ModuleFacade& facade = vorn::facade(name);
  const std::shared_ptr<VORNModule> module = facade.module();
  if (name == ModuleName::cdp)
    CDP::shared()->tearDown();
  else
    tearDownPush(module);
  // Clearing the module puts the facade back where it started, so that the next start-up
  // may start it again; a facade that never got a module keeps telling why.
  if (module)
    facade.setStatus(ModuleStatus::inactive);
}

void tearDown(const Config& config) {
  for (const auto& moduleConfig : config.moduleConfigs())
    tearDownModule(moduleConfig->name());
  StartupRecord& record = startupRecord();
  // Released outside the cell: the callbacks it holds are the app's.
  std::optional<Config> released;
  record.lastAppliedConfig.mutate([&](std::optional<Config>& last) { released.swap(last); });
  record.initializationState.mutate(
      [](InitializationState& state) { state = InitializationState::NONE; });
}

}  // namespace vorn::detail

// Starting one feature module: the part of a start-up that concerns a single facade.
#pragma once

#include <memory>
#include <vector>

#include "vorn/core/Config.hpp"
#include "vorn/core/ModuleConfig.hpp"
#include "vorn/facades/ModuleFacade.hpp"

namespace vorn::detail {

/// Starts the module `config` configures when its facade is inactive, failed or cancelled,
/// its class is registered and its version accepted; the module-ready handling then hands
/// the outcome to `callbacks`. In every other case the facade's status tells why
/// (initializing stays, or failed) and no callback is called, deliberately: the start-up's
/// wait for the module then runs out.
void startModule(ModuleFacade& facade, std::shared_ptr<const ModuleConfig> config,
                 std::vector<CompletionCallback> callbacks);

}  // namespace vorn::detail

// Tearing modules down: for one module name, or for every module of a configuration.
#pragma once

#include "vorn/base/ModuleName.hpp"
#include "vorn/core/Config.hpp"

namespace vorn::detail {

/// Tears down the module attached to the facade of `name`, if any: the module stops (its bus
/// subscription is its own to end), leaves the facade, and the facade is `inactive` again,
/// ready for the next start. A facade without a module keeps its status, so a module that
/// failed to start still reads `failed`.
void tearDownModule(ModuleName name);

/// Tears down every module `config` configures, then forgets the configuration last applied
/// and puts the start-up state back to NONE.
void tearDown(const Config& config);

}  // namespace vorn::detail

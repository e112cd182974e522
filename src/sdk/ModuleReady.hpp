// What happens when the operation that starts a module has finished.
#pragma once

#include <vector>

#include "vorn/core/Config.hpp"
#include "vorn/core/ModuleInitializer.hpp"
#include "vorn/facades/ModuleFacade.hpp"

namespace vorn::detail {

/// A cancelled start is only logged. A start that left no module on the facade (the class
/// gave none, or the time-out came first) makes the facade `failed`. A module makes it
/// `operational`, subscribed to the event bus when it listens, and every callback hears
/// "success": as operations of the current operation queue when there is one, otherwise one
/// after another on this thread.
void handleModuleReady(const ModuleInitializer& initializer, ModuleFacade& facade,
                       std::vector<CompletionCallback> callbacks);

/// Calls every callback with `result`, in order, on this thread. A callback that throws does
/// not keep the later ones from being called.
void callAll(const std::vector<CompletionCallback>& callbacks, OperationResult result);

}  // namespace vorn::detail

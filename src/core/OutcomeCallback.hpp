// The core's own outcome callback, registered ahead of the app's for every module so that
// the event bus settles the messages it buffered for the module before the app hears of it.
#pragma once

#include "vorn/base/ModuleName.hpp"
#include "vorn/core/Config.hpp"

namespace vorn::detail {

/// On success the module's buffered messages are delivered; on any other outcome they are
/// dropped, with a debug line in the event bus category.
CompletionCallback internalOutcomeCallback(ModuleName name);

}  // namespace vorn::detail

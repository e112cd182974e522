// Facade sources: how the layers below the facades see the modules without including them.
//
// installFacadeSources() makes the event bus read each module's status from its facade
// (EventBus::setStatusSource) and installs an IdentityModuleAccess that reads each facade's
// status and its module's identity as JSON text. Start-up calls it before it starts any
// module; calling it again installs the same sources again, so it may be called every time.
//
// facade() selects the facade of a module name: PUSH::shared() for `push`, CDP::shared()
// for `cdp`.
//
// Thread safety: both may be called from any thread.
#pragma once

#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/facades/ModuleFacade.hpp"

namespace vorn {

VORN_API void installFacadeSources();

/// Never fails for a ModuleName case; the facades live for the whole process.
VORN_API ModuleFacade& facade(ModuleName name);

}  // namespace vorn

// IdentityModuleAccess: how the identity layer sees the feature modules without including
// the facades that own them.
//
// The identity needs two things of each module: its status, to decide whether a profile id
// or attributes may be sent to it alone, and, for an operational module, its own identity
// as JSON text (see ModuleIdentity.hpp for the usual serialiser) for IDENTITY::toJson().
// Whatever owns the facades implements this once for both modules and installs it at
// start-up:
//
//   IdentityModuleAccess::install(std::make_shared<FacadeIdentityAccess>());
//
// Until something is installed (or after install(nullptr)) every module reads as
// `inactive` with no identity, which is what a module that was never attached looks like.
//
// Ownership: the installed object is shared; a caller that took installed() keeps it alive
// while it uses it, so replacing it never pulls it from under a running call. Thread
// safety: install() and installed() may be called from any thread; an implementation's
// members are called from any thread, possibly at once, and must not call back into the
// identity layer.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/base/ModuleStatus.hpp"

namespace vorn {

class VORN_API IdentityModuleAccess {
 public:
  virtual ~IdentityModuleAccess();

  /// The module facade's current status.
  virtual ModuleStatus status(ModuleName module) const = 0;
  /// The module's own identity as JSON text; absent when the module has none to report.
  /// The text is spliced into the identity JSON as it comes, after a validity check.
  virtual std::optional<std::string> identity(ModuleName module) const = 0;

  /// Makes `access` the one the identity layer reads; null restores "nothing attached".
  static void install(std::shared_ptr<const IdentityModuleAccess> access);
  /// The installed access; never null (a stand-in reporting `inactive` when none is).
  static std::shared_ptr<const IdentityModuleAccess> installed();
};

}  // namespace vorn

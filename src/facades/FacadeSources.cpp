#include "vorn/facades/FacadeSources.hpp"

#include <memory>
#include <optional>
#include <string>

#include "vorn/facades/CDP.hpp"
#include "vorn/facades/PUSH.hpp"
#include "vorn/identity/IdentityModuleAccess.hpp"
#include "vorn/messaging/EventBus.hpp"

namespace vorn {
namespace {

std::optional<ModuleIdentity> moduleIdentity(ModuleName name) {
  switch (name) {
    case ModuleName::cdp:
      return CDP::shared()->getIdentity();
    case ModuleName::push:
      return PUSH::shared()->getIdentity();
  }
  return std::nullopt;
}

// The identity layer's view of the modules, read from the facades on every call.
class FacadeIdentityAccess final : public IdentityModuleAccess {
 public:
  ModuleStatus status(ModuleName module) const override { return facade(module).getStatus(); }

  std::optional<std::string> identity(ModuleName module) const override {
    const auto identity = moduleIdentity(module);
    return identity ? toJsonText(*identity) : std::nullopt;
  }
};

ModuleStatus facadeStatus(ModuleName module) {
  return facade(module).getStatus();
}

}  // namespace

ModuleFacade& facade(ModuleName name) {
  if (name == ModuleName::push)
    return *PUSH::shared();
  return *CDP::shared();
}

void installFacadeSources() {
  EventBus::setStatusSource(facadeStatus);
  IdentityModuleAccess::install(std::make_shared<FacadeIdentityAccess>());
}

}  // namespace vorn

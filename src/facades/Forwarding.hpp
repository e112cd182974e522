// The forwarding rule every facade operation follows, written once for both facades:
// readyModule() finds the module when the facade is ready and writes the readiness line
// when it is not; forwardCall() then calls the module's operation of the same name, or
// writes the operation's own line and gives its default.
#pragma once

#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>

#include "vorn/base/ModuleName.hpp"
#include "vorn/base/ModuleStatus.hpp"
#include "vorn/facades/ModuleFacade.hpp"

namespace vorn::detail {

/// "Module <name> is not initialized. <advice>Current status: <status>", category
/// `interface`.
void logNotInitialized(ModuleName name, std::string_view advice, ModuleStatus status);
/// An operation's own not-ready line, category `interface`.
void logNotReady(std::string_view line);

/// The attached module as `Interface` when it implements it and the status is
/// `operational`; otherwise null, after the readiness line.
template <class Interface>
std::shared_ptr<Interface> readyModule(const ModuleFacade& facade, std::string_view advice) {
  auto module = std::dynamic_pointer_cast<Interface>(facade.module());
  const ModuleStatus status = facade.getStatus();
  if (module && status == ModuleStatus::operational)
    return module;
  logNotInitialized(facade.name(), advice, status);
  return nullptr;
}

/// The module's answer when `module` is set (the facade was ready), else `fallback`.
template <class Interface, class R, class... Params, class... Args>
R forwardCall(const std::shared_ptr<Interface>& module, R (Interface::*operation)(Params...),
              std::string_view notReadyLine, std::type_identity_t<R> fallback, Args&&... args) {
  if (module)
    return ((*module).*operation)(std::forward<Args>(args)...);
  logNotReady(notReadyLine);
  return fallback;
}

/// The same for operations without a result: a call that is not ready is dropped.
template <class Interface, class... Params, class... Args>
void forwardCall(const std::shared_ptr<Interface>& module, void (Interface::*operation)(Params...),
                 std::string_view notReadyLine, Args&&... args) {
  if (module)
    return ((*module).*operation)(std::forward<Args>(args)...);
  logNotReady(notReadyLine);
}

}  // namespace vorn::detail

#include "identity/ModuleReadiness.hpp"

#include <string>

#include "vorn/identity/IdentityModuleAccess.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/messaging/EventBus.hpp"

namespace vorn::detail {
namespace {

bool isOperational(ModuleName module) {
  const ModuleStatus status = IdentityModuleAccess::installed()->status(module);
  if (status == ModuleStatus::operational)
    return true;
  VORN_LOG_WARNING(LoggerCategory::identity, "Module " + std::string(rawValue(module)) +
                                                 " is not operational (" +
                                                 std::string(rawValue(status)) + ").");
  return false;
}

bool isSubscribed(ModuleName module) {
  if (EventBus::subscriptions().contains(module))
    return true;
  VORN_LOG_WARNING(LoggerCategory::identity, "Module `" + std::string(rawValue(module)) +
                                                 "` is not subscribed to receive events.");
  return false;
}

}  // namespace

bool isReadyForIdentity(ModuleName module) {
  // The status comes first: a module that is not running says so, not that it is
  // unsubscribed.
  return isOperational(module) && isSubscribed(module);
}

}  // namespace vorn::detail

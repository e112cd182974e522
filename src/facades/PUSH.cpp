// The push facade's own state: status, deferred requests, teardown and readiness. The
// forwarded operations live in the Push*.cpp files, grouped by what they are about.
#include "vorn/facades/PUSH.hpp"

#include <string>
#include <utility>

#include "facades/Forwarding.hpp"
#include "vorn/logging/Log.hpp"

namespace vorn {

PUSH::PUSH() : ModuleFacade(ModuleName::push, Compatibility::create("8.1.0", "8.9.9")) {}

std::shared_ptr<PUSH> PUSH::shared() {
  // Never destroyed, so that a request still running at exit finds its facade.
  static const auto* const instance = new std::shared_ptr<PUSH>(new PUSH);
  return *instance;
}

ModuleStatus PUSH::getStatus() const {
  std::lock_guard lock(statusLock_);
  return status_;
}

void PUSH::setStatus(ModuleStatus status) {
  std::lock_guard lock(statusLock_);
  status_ = status;
}

void PUSH::requestPushSdk(Request request) {
  if (!request)
    return;
  {
    // Kept under the status lock: the module-ready handling sets `operational` under it
    // before it releases the list, so a request cannot slip in after the release and wait
    // for a later request to free it.
    std::lock_guard lock(statusLock_);
    if (status_ != ModuleStatus::operational) {
      deferredCalls_.mutate([&](std::vector<DeferredCall>& calls) {
        calls.push_back(DeferredCall{[request] { request(shared()); }});
      });
      return;
    }
  }
  request(shared());
  releaseDeferredCalls();
}

void PUSH::releaseDeferredCalls() {
  deferredCalls_.mutate([this](std::vector<DeferredCall>& calls) {
    for (DeferredCall& call : calls)
      deferredCallsQueue_.async(std::move(call.closure));
    calls.clear();
  });
}

void PUSH::tearDown() {
  VORN_LOG_DEBUG(LoggerCategory::sdk, "Tearing down module: " + std::string(rawValue(name())) +
                                          ". All deferred calls will be removed.");
  // Dropped outside the cell: a request's captures may run app code when destroyed.
  std::vector<DeferredCall> dropped;
  deferredCalls_.mutate([&](std::vector<DeferredCall>& calls) { dropped.swap(calls); });
}

std::shared_ptr<PushInterface> PUSH::ready() const {
  return detail::readyModule<PushInterface>(*this, "You need to initialize before using. ");
}

std::optional<ModuleIdentity> PUSH::getIdentity() {
  const auto module = ready();
  return module ? module->getIdentity() : std::nullopt;
}

}  // namespace vorn

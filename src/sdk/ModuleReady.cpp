#include "sdk/ModuleReady.hpp"

#include <string>

#include "vorn/facades/PUSH.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/messaging/EventBus.hpp"
#include "vorn/runtime/DispatchQueue.hpp"
#include "vorn/runtime/OperationQueue.hpp"

namespace vorn::detail {
namespace {

void callGuarded(const CompletionCallback& callback, OperationResult result) {
  if (!callback)
    return;
  try {
    callback(result);
  } catch (...) {
    VORN_LOG_ERROR(LoggerCategory::sdk, "A module completion callback threw. Ignored.");
  }
}

void deliverSuccess(std::vector<CompletionCallback> callbacks) {
  if (OperationQueue* queue = OperationQueue::current()) {
    for (CompletionCallback& callback : callbacks)
      queue->addOperation(
          [callback = std::move(callback)] { callGuarded(callback, OperationResult::success); });
    return;
  }
  callAll(callbacks, OperationResult::success);
}

// Two modules may finish starting at the same moment on two pool threads, and two
// overlapping EventBus::subscribe() calls can lose one of the subscriptions; one at a time,
// both are kept.
void subscribe(const std::shared_ptr<Subscriber>& subscriber) {
  static auto* const queue = new DispatchQueue("com.quorvantis.tessarine.vornsdk.subscriptions");
  queue->sync([&] { EventBus::subscribe(subscriber); });
}

// Requests for the push module made while it was starting may run from now on, in the order
// they were made.
void announceOperational(ModuleFacade& facade) {
  if (facade.name() == ModuleName::push)
    PUSH::shared()->releaseDeferredCalls();
}

void logCancelled(const ModuleFacade& facade) {
  const Compatibility& range = *facade.compatibility();
  VORN_LOG_WARNING(LoggerCategory::sdk, "Module `" + description(facade.name()) +
                                            " with version compatibility: " + range.min() + " - " +
                                            range.max() + "` initialization got cancelled.");
}

}  // namespace

void handleModuleReady(const ModuleInitializer& initializer, ModuleFacade& facade,
                       std::vector<CompletionCallback> callbacks) {
  // A time-out cancels the operation too, but what it means is that no module arrived.
  if (initializer.isCancelled() && !initializer.operationTimedOut()) {
    logCancelled(facade);
    return;
  }
  const std::string name = description(facade.name());
  const std::shared_ptr<VORNModule> module = facade.module();
  if (!module) {
    VORN_LOG_DEBUG(LoggerCategory::sdk, "Module " + name + " The operation timed out.");
    facade.setStatus(ModuleStatus::failed);
    return;
  }
  facade.setStatus(ModuleStatus::operational);
  if (const std::shared_ptr<Subscriber> subscriber = module->asSubscriber())
    subscribe(subscriber);
  announceOperational(facade);
  VORN_LOG_DEBUG(LoggerCategory::sdk, "Module `" + name + "` initialized.");
  deliverSuccess(std::move(callbacks));
}

void callAll(const std::vector<CompletionCallback>& callbacks, OperationResult result) {
  for (const CompletionCallback& callback : callbacks)
    callGuarded(callback, result);
}

}  // namespace vorn::detail

#include "core/OutcomeCallback.hpp"

#include "vorn/logging/Log.hpp"
#include "vorn/messaging/EventBus.hpp"

namespace vorn::detail {

CompletionCallback internalOutcomeCallback(ModuleName name) {
  return [name](OperationResult result) {
    if (result == OperationResult::success) {
      EventBus::sendBufferedMessages(name);
      return;
    }
    VORN_LOG_DEBUG(LoggerCategory::eventBus, "Clearing message buffer for `" + description(name) +
                                                 "`. Module failed to subscribe.");
    EventBus::clearBuffer(name);
  };
}

}  // namespace vorn::detail

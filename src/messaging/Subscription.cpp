#include "vorn/messaging/Subscription.hpp"

#include "vorn/logging/Log.hpp"
#include "vorn/messaging/SendMessageOperation.hpp"

namespace vorn {

Subscription::Subscription(const std::shared_ptr<Subscriber>& subscriber)
    : name_(subscriber->name()),
      queueName_("vornsdk.eventbus." + std::string(rawValue(name_))),
      subscriber_(subscriber) {}

OperationQueue& Subscription::queue() {
  std::call_once(queueCreated_, [this] {
    queue_ = std::make_unique<OperationQueue>();
    queue_->setName(queueName_);
  });
  return *queue_;
}

void Subscription::send(std::shared_ptr<const Message> message) {
  std::shared_ptr<Subscriber> subscriber = subscriber_.lock();
  if (!subscriber) {
    VORN_LOG_DEBUG(LoggerCategory::eventBus, "Failed to send message (" + message->id() +
                                                 "). Lost connection to the " +
                                                 std::string(rawValue(name_)) + " subscriber.");
    return;
  }
  // The count and the add are not one step: concurrent senders may overshoot the bound by a
  // few, which is harmless - it exists to stop a stuck module from hoarding memory.
  OperationQueue& deliveries = queue();
  const std::size_t count = deliveries.operationCount();
  if (count >= static_cast<std::size_t>(maxOperations)) {
    VORN_LOG_DEBUG(LoggerCategory::sdk, "Failed adding operation to the " +
                                            std::string(rawValue(name_)) +
                                            " queue. Buffer is full. Dropping the message.");
    return;
  }
  VORN_LOG_DEBUG(LoggerCategory::sdk, "New operation (" + std::to_string(count) + " of " +
                                          std::to_string(maxOperations) + ") added to the " +
                                          queueName_ + " queue.");
  deliveries.addOperation(
      std::make_shared<SendMessageOperation>(std::move(message), std::move(subscriber)));
}

}  // namespace vorn

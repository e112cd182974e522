#include "vorn/messaging/SendMessageOperation.hpp"

namespace vorn {

SendMessageOperation::SendMessageOperation(std::shared_ptr<const Message> message,
                                           std::shared_ptr<Subscriber> subscriber)
    : message_(std::move(message)), subscriber_(std::move(subscriber)) {}

void SendMessageOperation::main() {
  if (subscriber_ && message_)
    subscriber_->receive(message_);
}

}  // namespace vorn

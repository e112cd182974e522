// SendMessageOperation: delivers one bus message to one subscriber; main() calls the
// subscriber's receive(). It runs on the subscriber's delivery queue and holds both the
// message and the subscriber strongly until it has run.
#pragma once

#include <memory>

#include "vorn/base/Export.hpp"
#include "vorn/messaging/Message.hpp"
#include "vorn/messaging/Subscriber.hpp"
#include "vorn/runtime/Operation.hpp"

namespace vorn {

class VORN_API SendMessageOperation final : public Operation {
 public:
  SendMessageOperation(std::shared_ptr<const Message> message,
                       std::shared_ptr<Subscriber> subscriber);

  void main() override;

  const std::shared_ptr<const Message>& message() const noexcept { return message_; }
  const std::shared_ptr<Subscriber>& subscriber() const noexcept { return subscriber_; }

 private:
  const std::shared_ptr<const Message> message_;
  const std::shared_ptr<Subscriber> subscriber_;
};

}  // namespace vorn

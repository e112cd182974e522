// Subscription: one subscribed module's delivery channel on the event bus.
//
// It holds the subscriber weakly (the module owns itself) and owns a delivery queue named
// "vornsdk.eventbus.<module>", created on first use with the default concurrency, so
// deliveries to one module never wait for another module and may overlap each other.
// At most `maxOperations` deliveries wait on the queue; a further message is dropped with a
// log line.
//
// Destroying a subscription releases its queue without cancelling deliveries already added.
// Thread safety: every member function may be called from any thread.
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/messaging/Message.hpp"
#include "vorn/messaging/Subscriber.hpp"
#include "vorn/runtime/OperationQueue.hpp"

namespace vorn {

class VORN_API Subscription {
 public:
  static constexpr int maxOperations = 100;

  /// `subscriber` must not be null.
  explicit Subscription(const std::shared_ptr<Subscriber>& subscriber);

  Subscription(const Subscription&) = delete;
  Subscription& operator=(const Subscription&) = delete;

  ModuleName name() const noexcept { return name_; }
  const std::string& queueName() const noexcept { return queueName_; }
  /// Null once the module has released its subscriber.
  std::shared_ptr<Subscriber> subscriber() const noexcept { return subscriber_.lock(); }

  /// Queues one delivery of `message`, or logs why it cannot.
  void send(std::shared_ptr<const Message> message);

  /// The delivery queue, created on first use.
  OperationQueue& queue();

 private:
  const ModuleName name_;
  const std::string queueName_;
  const std::weak_ptr<Subscriber> subscriber_;
  std::once_flag queueCreated_;
  std::unique_ptr<OperationQueue> queue_;  // written once, under queueCreated_
};

}  // namespace vorn

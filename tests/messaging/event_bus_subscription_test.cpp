// Subscribing, unsubscribing and publishing through a Publisher.
#include "BusTestSupport.hpp"
#include "vorn/messaging/Publisher.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn::bustest {
namespace {

using testing::waitUntil;

TEST_F(EventBusTest, SubscribingRequiresAnOperationalModule) {
  statuses.set(ModuleName::cdp, ModuleStatus::initializing);
  EventBus::subscribe(std::make_shared<RecordingSubscriber>(ModuleName::cdp));
  EXPECT_TRUE(
      sink->contains("Module `cdp` not subscribed to receive events. Module is not operational."));
  EXPECT_TRUE(EventBus::subscriptions().empty());

  subscribeOperational(ModuleName::cdp);
  EXPECT_TRUE(sink->contains("Module `cdp` subscribed to receive events."));
  const auto subscription = EventBus::subscriptions().at(ModuleName::cdp);
  EXPECT_EQ(subscription->queueName(), "vornsdk.eventbus.cdp");
  EXPECT_EQ(subscription->queue().name(), "vornsdk.eventbus.cdp");
  EXPECT_EQ(subscription->queue().maxConcurrentOperationCount(),
            OperationQueue::kDefaultMaxConcurrentOperationCount);
}

TEST_F(EventBusTest, SubscribingAgainReplacesTheSubscriptionAndItsQueue) {
  auto first = subscribeOperational(ModuleName::cdp);
  const auto firstSubscription = EventBus::subscriptions().at(ModuleName::cdp);
  auto second = subscribeOperational(ModuleName::cdp);
  EXPECT_NE(EventBus::subscriptions().at(ModuleName::cdp), firstSubscription);
  EventBus::publish(MessageProducer::sdk, event("e"));
  ASSERT_TRUE(waitUntil([&] { return second->count() == 1; }));
  EXPECT_EQ(first->count(), 0u);
}

TEST_F(EventBusTest, UnsubscribingKeepsDeliveriesAlreadyQueued) {
  auto cdp = subscribeOperational(ModuleName::cdp);
  cdp->hold();
  EventBus::publish(MessageProducer::sdk, event("a"));
  EventBus::publish(MessageProducer::sdk, event("b"));
  EventBus::unsubscribe(cdp);
  EXPECT_TRUE(sink->contains("Module `cdp` unsubscribed from receiving events."));
  EXPECT_TRUE(EventBus::subscriptions().empty());
  cdp->release();
  EXPECT_TRUE(waitUntil([&] { return cdp->count() == 2; }));
  EventBus::publish(MessageProducer::sdk, event("c"));
  EXPECT_EQ(cdp->count(), 2u);
}

TEST_F(EventBusTest, ReleasedSubscriberLosesItsConnection) {
  auto cdp = subscribeOperational(ModuleName::cdp);
  cdp.reset();
  sink->clear();
  const auto e = event("Gone");
  EventBus::publish(MessageProducer::sdk, e);
  EXPECT_TRUE(sink->contains("Message `Gone` send to ``"));
  EXPECT_TRUE(sink->contains("Failed to send message (" + e->id() +
                             "). Lost connection to the cdp subscriber."));
}

TEST_F(EventBusTest, AFullDeliveryQueueDropsTheMessage) {
  auto cdp = subscribeOperational(ModuleName::cdp);
  cdp->hold();
  for (int i = 0; i < 100; ++i)
    EventBus::publishTo(ModuleName::cdp, MessageProducer::sdk, event("e"));
  EXPECT_TRUE(sink->contains("New operation (99 of 100) added to the vornsdk.eventbus.cdp queue."));
  EventBus::publishTo(ModuleName::cdp, MessageProducer::sdk, event("e"));
  const auto dropped =
      sink->find("Failed adding operation to the cdp queue. Buffer is full. Dropping the message.");
  ASSERT_TRUE(dropped);
  EXPECT_EQ(dropped->category, LoggerCategory::sdk);
  cdp->release();
  EventBus::subscriptions().at(ModuleName::cdp)->queue().waitUntilAllOperationsAreFinished();
  EXPECT_EQ(cdp->count(), 100u);
}

TEST_F(EventBusTest, NullInputIsIgnored) {
  EventBus::publish(MessageProducer::sdk, nullptr);
  EventBus::publishTo(ModuleName::cdp, MessageProducer::sdk, nullptr);
  EventBus::subscribe(nullptr);
  EventBus::unsubscribe(nullptr);
  EXPECT_TRUE(sink->lines().empty());
}

class ModulePublisher : public Publisher {
 public:
  explicit ModulePublisher(ModuleName name) : name_(name) {}
  ModuleName name() const override { return name_; }

 private:
  ModuleName name_;
};

TEST_F(EventBusTest, PublisherSendsToEveryModuleAsItsOwnProducer) {
  auto cdp = subscribeOperational(ModuleName::cdp);
  auto push = subscribeOperational(ModuleName::push);
  ModulePublisher(ModuleName::push).send(event("from push"));
  ModulePublisher(ModuleName::cdp).send(event("from cdp"));
  ASSERT_TRUE(waitUntil([&] { return cdp->count() == 2 && push->count() == 2; }));
  for (const auto& message : cdp->received())
    EXPECT_EQ(message->producer(), message->name() == "from push" ? "push" : "cdp");
}

}  // namespace
}  // namespace vorn::bustest

#include <gtest/gtest.h>

#include <regex>
#include <stdexcept>

#include "BusTestSupport.hpp"
#include "vorn/events/CustomEvent.hpp"
#include "vorn/events/IdentityEvent.hpp"
#include "vorn/events/OrderEvent.hpp"
#include "vorn/events/SystemEvent.hpp"
#include "vorn/messaging/Message.hpp"
#include "vorn/messaging/MessageProducer.hpp"
#include "vorn/messaging/SendMessageOperation.hpp"

namespace vorn {
namespace {

TEST(MessageProducerTest, RawValuesAndConstruction) {
  EXPECT_EQ(rawValue(MessageProducer::cdp), "cdp");
  EXPECT_EQ(rawValue(MessageProducer::push), "push");
  EXPECT_EQ(rawValue(MessageProducer::sdk), "sdk");
  EXPECT_EQ(messageProducerFrom("sdk"), MessageProducer::sdk);
  EXPECT_FALSE(messageProducerFrom("SDK"));
  EXPECT_EQ(messageProducerFromInt(1), MessageProducer::push);
  EXPECT_FALSE(messageProducerFromInt(3));
  EXPECT_FALSE(messageProducerFromInt(-1));
}

TEST(MessageTest, BuiltFromAnEventCopiesItsFieldsAndSharesIt) {
  const std::shared_ptr<const Event> event =
      CustomEvent::create("Checkout", Dictionary{{"total", *Decimal::parse("9.99")}});
  const auto message = Message::makeFrom(MessageProducer::sdk, event);
  EXPECT_EQ(message->id(), event->id());
  EXPECT_EQ(message->name(), "Checkout");
  EXPECT_EQ(message->category(), "engagement");
  EXPECT_EQ(message->producer(), "sdk");
  EXPECT_EQ(message->parameters(), event->attributes());
  EXPECT_EQ(&*message->parameters(), &*event->attributes());  // shared, not copied
  EXPECT_EQ(message->fromEvent(), event);
  EXPECT_FALSE(message->priority());
  EXPECT_TRUE(
      std::regex_match(message->timestamp(), std::regex(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ)")));
}

TEST(MessageTest, CategoryFollowsTheEvent) {
  EXPECT_EQ(Message::makeFrom(MessageProducer::cdp, IdentityEvent::withProfileId("p"))->category(),
            "identity");
  EXPECT_EQ(Message::makeFrom(MessageProducer::cdp, std::make_shared<SystemEvent>("s"))->category(),
            "system");
}

TEST(MessageTest, CommercePayloadTravelsOnlyInTheEvent) {
  const auto event = std::make_shared<PurchaseOrderEvent>(Order{.id = "O-1",
                                                                .lineItems = {},
                                                                .totalValue = std::nullopt,
                                                                .currency = std::nullopt,
                                                                .attributes = {}});
  const auto message = Message::makeFrom(MessageProducer::sdk, event);
  EXPECT_EQ(message->name(), "Purchase");
  EXPECT_EQ(message->category(), "engagement");
  EXPECT_FALSE(message->parameters());
  const auto order = std::dynamic_pointer_cast<const OrderEvent>(message->fromEvent());
  ASSERT_TRUE(order);
  EXPECT_EQ(order->order().id, "O-1");
}

TEST(MessageTest, CategoryDescriptorsAndUndefinedTags) {
  const auto text = [](auto category) {
    return Message("i", "n", category, MessageProducer::push, std::nullopt, nullptr, true)
        .category();
  };
  EXPECT_EQ(text(EventCategory::system), "system");
  EXPECT_EQ(text(static_cast<EventCategory>(3)), "undefined");
  EXPECT_EQ(text(ApplicationCategory::application), "application");
  EXPECT_EQ(text(ApplicationCategory::system), "system");
  EXPECT_EQ(text(static_cast<ApplicationCategory>(2)), "undefined");
  const Message message("i", "n", EventCategory::identity, MessageProducer::push,
                        Dictionary{{"k", 1}}, nullptr, true);
  EXPECT_EQ(message.producer(), "push");
  EXPECT_TRUE(message.priority());
  EXPECT_EQ(*message.parameters(), (Dictionary{{"k", 1}}));
  EXPECT_FALSE(message.fromEvent());
}

class ThrowingSubscriber : public Subscriber {
 public:
  ModuleName name() const override { return ModuleName::cdp; }
  void receive(std::shared_ptr<const Message>) override { throw std::runtime_error("boom"); }
};

TEST(SendMessageOperationTest, MainHandsTheMessageToTheSubscriber) {
  auto subscriber = std::make_shared<bustest::RecordingSubscriber>(ModuleName::push);
  const auto message = Message::makeFrom(MessageProducer::sdk, std::make_shared<SystemEvent>("s"));
  auto operation = std::make_shared<SendMessageOperation>(message, subscriber);
  operation->start();
  EXPECT_TRUE(operation->isFinished());
  ASSERT_EQ(subscriber->count(), 1u);
  EXPECT_EQ(subscriber->received()[0], message);
}

TEST(SendMessageOperationTest, AThrowingSubscriberStillFinishesTheOperation) {
  const auto message = Message::makeFrom(MessageProducer::sdk, std::make_shared<SystemEvent>("s"));
  auto operation =
      std::make_shared<SendMessageOperation>(message, std::make_shared<ThrowingSubscriber>());
  operation->start();
  EXPECT_TRUE(operation->isFinished());
}

}  // namespace
}  // namespace vorn

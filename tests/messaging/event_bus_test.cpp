#include <gtest/gtest.h>

#include <thread>

#include "BusTestSupport.hpp"
#include "vorn/events/CustomEvent.hpp"
#include "vorn/events/SystemEvent.hpp"
#include "vorn/messaging/EventBus.hpp"
#include "vorn/messaging/Publisher.hpp"
#include "vorn/messaging/SendMessageOperation.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

using bustest::event;
using bustest::EventBusTest;
using bustest::RecordingSubscriber;
using testing::CaptureLogSink;
using testing::waitUntil;

std::vector<std::string> idsOf(const std::vector<std::shared_ptr<const Message>>& messages) {
  std::vector<std::string> ids;
  for (const auto& message : messages)
    ids.push_back(message->id());
  return ids;
}

TEST_F(EventBusTest, InitializingModulesWithoutSubscribersGetTheMessageBuffered) {
  statuses.set(ModuleName::cdp, ModuleStatus::initializing);
  statuses.set(ModuleName::push, ModuleStatus::initializing);
  const auto e = event("Launch");
  EventBus::publish(MessageProducer::sdk, e);

  const auto buffers = EventBus::buffers();
  ASSERT_EQ(buffers.size(), 2u);
  for (const ModuleName module : kAllModuleNames) {
    ASSERT_EQ(buffers.at(module).size(), 1u);
    EXPECT_EQ(buffers.at(module)[0]->fromEvent(), e);
  }
  EXPECT_EQ(sink->messages(),
            (std::vector<std::string>{
                "Message `Launch` received on the event bus.",
                "Adding message " + e->id() + " to a buffer for `cdp`. Module initializing.",
                "Adding message " + e->id() + " to a buffer for `push`. Module initializing.",
            }));
  const auto line = sink->find("Message `Launch` received on the event bus.");
  EXPECT_EQ(line->level, LogLevel::debug);
  EXPECT_EQ(line->category, LoggerCategory::eventBus);
}

TEST_F(EventBusTest, ModulesNeitherSubscribedNorInitializingAreDroppedSilently) {
  for (const ModuleStatus status :
       {ModuleStatus::cancelled, ModuleStatus::disabled, ModuleStatus::failed,
        ModuleStatus::inactive, ModuleStatus::operational}) {
    statuses.set(ModuleName::cdp, status);
    statuses.set(ModuleName::push, status);
    EventBus::publish(MessageProducer::sdk, event("e"));
  }
  EXPECT_TRUE(EventBus::buffers().empty());
  EXPECT_EQ(sink->lines().size(), 5u);  // only the "received" lines
}

TEST_F(EventBusTest, WithoutAStatusSourceEveryModuleIsInactive) {
  EventBus::setStatusSource(nullptr);
  EventBus::publish(MessageProducer::sdk, event("e"));
  EXPECT_TRUE(EventBus::buffers().empty());
  EventBus::subscribe(std::make_shared<RecordingSubscriber>(ModuleName::cdp));
  EXPECT_TRUE(EventBus::subscriptions().empty());
}

TEST_F(EventBusTest, BothSubscribedModulesReceiveOnQueueThreadsAndNothingIsBuffered) {
  auto cdp = subscribeOperational(ModuleName::cdp);
  auto push = subscribeOperational(ModuleName::push);
  sink->clear();
  const auto e = CustomEvent::create("Tap", Dictionary{{"x", 1}});
  EventBus::publish(MessageProducer::push, e);

  ASSERT_TRUE(waitUntil([&] { return cdp->count() == 1 && push->count() == 1; }));
  for (const auto& subscriber : {cdp, push}) {
    const auto message = subscriber->received()[0];
    EXPECT_EQ(message->id(), e->id());
    EXPECT_EQ(message->producer(), "push");
    EXPECT_EQ(message->parameters(), e->attributes());
    EXPECT_NE(subscriber->threads()[0], std::this_thread::get_id());
  }
  EXPECT_TRUE(sink->contains("Message `Tap` send to `cdp`"));
  EXPECT_TRUE(sink->contains("Message `Tap` send to `push`"));
  EXPECT_TRUE(sink->contains("Nothing to buffer. All modules are operational."));
  const auto queued =
      sink->find("New operation (0 of 100) added to the vornsdk.eventbus.cdp queue.");
  ASSERT_TRUE(queued);
  EXPECT_EQ(queued->category, LoggerCategory::sdk);
  EXPECT_TRUE(sink->contains("New operation (0 of 100) added to the vornsdk.eventbus.push queue."));
  EXPECT_TRUE(EventBus::buffers().empty());
}

TEST_F(EventBusTest, OneSubscribedModuleStillBuffersForTheInitializingOther) {
  auto cdp = subscribeOperational(ModuleName::cdp);
  statuses.set(ModuleName::push, ModuleStatus::initializing);
  EventBus::publish(MessageProducer::sdk, event("e"));
  ASSERT_TRUE(waitUntil([&] { return cdp->count() == 1; }));
  const auto buffers = EventBus::buffers();
  EXPECT_FALSE(buffers.contains(ModuleName::cdp));
  EXPECT_EQ(buffers.at(ModuleName::push).size(), 1u);
  EXPECT_FALSE(sink->contains("Nothing to buffer. All modules are operational."));
}

TEST_F(EventBusTest, BufferKeepsTheOldestHundredAndHandsThemOverInOrderTwice) {
  statuses.set(ModuleName::cdp, ModuleStatus::initializing);
  std::vector<std::string> published;
  for (int i = 0; i < 101; ++i) {
    const auto e = event("e" + std::to_string(i));
    published.push_back(e->id());
    EventBus::publishTo(ModuleName::cdp, MessageProducer::sdk, e);
  }
  EXPECT_TRUE(sink->contains("Adding message " + published[100] +
                             " to the `cdp` buffer failed. Buffer is full."));
  published.pop_back();
  EXPECT_EQ(idsOf(EventBus::buffers().at(ModuleName::cdp)), published);

  auto cdp = subscribeOperational(ModuleName::cdp);
  EXPECT_EQ(cdp->count(), 0u);  // subscribing hands nothing over
  cdp->hold();
  EventBus::sendBufferedMessages(ModuleName::cdp);
  EXPECT_TRUE(sink->contains("Sedning buffered messages to `cdp`. Module initialized."));
  // Hand-over order is the queue's order, oldest first.
  std::vector<std::string> queued;
  for (const auto& operation : EventBus::subscriptions().at(ModuleName::cdp)->queue().operations())
    queued.push_back(std::dynamic_pointer_cast<SendMessageOperation>(operation)->message()->id());
  EXPECT_EQ(queued, published);
  cdp->release();
  ASSERT_TRUE(waitUntil([&] { return cdp->count() == 100; }));

  // The buffer is kept: a second call delivers the same messages again.
  EventBus::subscriptions().at(ModuleName::cdp)->queue().waitUntilAllOperationsAreFinished();
  EventBus::sendBufferedMessages(ModuleName::cdp);
  ASSERT_TRUE(waitUntil([&] { return cdp->count() == 200; }));
  EXPECT_EQ(EventBus::buffers().at(ModuleName::cdp).size(), 100u);
}

TEST_F(EventBusTest, SendingBufferedMessagesWithoutSubscriptionClearsTheBuffer) {
  statuses.set(ModuleName::push, ModuleStatus::initializing);
  EventBus::publishTo(ModuleName::push, MessageProducer::sdk, event("e"));
  sink->clear();
  EventBus::sendBufferedMessages(ModuleName::push);
  EXPECT_EQ(sink->messages(),
            (std::vector<std::string>{
                "Sedning buffered messages to `push` failed. Subscription not found.",
                "Clearing message buffer for `push`. Module failed to subscribe.",
            }));
  EXPECT_TRUE(EventBus::buffers().empty());
}

TEST_F(EventBusTest, SendingBufferedMessagesWithNoBufferDoesNothing) {
  EventBus::sendBufferedMessages(ModuleName::cdp);
  EXPECT_TRUE(sink->lines().empty());
}

TEST_F(EventBusTest, ClearBufferDropsOnlyThatModule) {
  statuses.set(ModuleName::cdp, ModuleStatus::initializing);
  statuses.set(ModuleName::push, ModuleStatus::initializing);
  EventBus::publish(MessageProducer::sdk, event("e"));
  EventBus::clearBuffer(ModuleName::cdp);
  EXPECT_TRUE(sink->contains("Clearing message buffer for `cdp`. Module failed to subscribe."));
  EXPECT_FALSE(EventBus::buffers().contains(ModuleName::cdp));
  EXPECT_EQ(EventBus::buffers().at(ModuleName::push).size(), 1u);
}

TEST_F(EventBusTest, PublishToAnUnsubscribedModuleLogsAWarning) {
  statuses.set(ModuleName::push, ModuleStatus::disabled);
  EventBus::publishTo(ModuleName::push, MessageProducer::sdk, event("e"));
  EXPECT_EQ(sink->messages(),
            (std::vector<std::string>{"Module `push` is not subscribed to receive events."}));
  EXPECT_EQ(sink->lines()[0].level, LogLevel::warning);
  EXPECT_EQ(sink->lines()[0].category, LoggerCategory::eventBus);
  EXPECT_TRUE(EventBus::buffers().empty());
}

TEST_F(EventBusTest, PublishToASubscribedModuleReachesOnlyThatModule) {
  auto cdp = subscribeOperational(ModuleName::cdp);
  auto push = subscribeOperational(ModuleName::push);
  sink->clear();
  EventBus::publishTo(ModuleName::push, MessageProducer::cdp, event("only"));
  ASSERT_TRUE(waitUntil([&] { return push->count() == 1; }));
  EXPECT_EQ(push->received()[0]->producer(), "cdp");
  EventBus::subscriptions().at(ModuleName::cdp)->queue().waitUntilAllOperationsAreFinished();
  EXPECT_EQ(cdp->count(), 0u);
  EXPECT_FALSE(sink->contains("Message `only` received on the event bus."));
}

}  // namespace
}  // namespace vorn

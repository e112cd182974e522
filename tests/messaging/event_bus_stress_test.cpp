// The bus under many threads: every published message reaches each subscribed module once or
// is dropped with its log line, never both, never twice, while subscriptions and buffers
// change underneath. Run under TSan as well as plainly.
#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <thread>

#include "BusTestSupport.hpp"
#include "vorn/events/SystemEvent.hpp"
#include "vorn/messaging/EventBus.hpp"
#include "vorn/sdk/VORNSdk.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

using bustest::IdRecordingSubscriber;
using bustest::RecordingSubscriber;
using testing::CaptureLogSink;
using testing::waitUntil;

constexpr int kPublishers = 4;
constexpr int kPerPublisher = 500;
constexpr std::size_t kTotal = kPublishers * kPerPublisher;

std::string droppedLine(ModuleName module) {
  return "Failed adding operation to the " + std::string(rawValue(module)) +
         " queue. Buffer is full. Dropping the message.";
}

std::string sentLine(std::string_view event, ModuleName module) {
  return "Message `" + std::string(event) + "` send to `" + std::string(rawValue(module)) + "`";
}

template <class Body>
void runPublishers(Body body, int perPublisher = kPerPublisher) {
  std::vector<std::thread> threads;
  for (int t = 0; t < kPublishers; ++t)
    threads.emplace_back([&body, perPublisher] {
      for (int i = 0; i < perPublisher; ++i)
        body();
    });
  for (auto& thread : threads)
    thread.join();
}

std::size_t uniqueCount(const std::vector<std::string>& ids) {
  return std::set<std::string>(ids.begin(), ids.end()).size();
}

TEST(EventBusStressTest, EveryMessageIsDeliveredOnceOrDroppedVisibly) {
  auto sink = CaptureLogSink::install();
  bustest::Statuses statuses;
  statuses.set(ModuleName::cdp, ModuleStatus::operational);
  statuses.set(ModuleName::push, ModuleStatus::operational);
  auto cdp = std::make_shared<RecordingSubscriber>(ModuleName::cdp);
  auto push = std::make_shared<RecordingSubscriber>(ModuleName::push);
  EventBus::subscribe(cdp);
  EventBus::subscribe(push);

  runPublishers(
      [] { EventBus::publish(MessageProducer::sdk, std::make_shared<SystemEvent>("s")); });

  for (const auto& subscriber : {cdp, push}) {
    const std::size_t dropped = sink->count(droppedLine(subscriber->name()));
    ASSERT_TRUE(waitUntil([&] { return subscriber->count() + dropped == kTotal; }))
        << subscriber->count() << " delivered, " << dropped << " dropped";
    const auto ids = subscriber->receivedIds();
    EXPECT_EQ(uniqueCount(ids), ids.size());
  }
  EXPECT_EQ(sink->count("Message `s` received on the event bus."), kTotal);
  EXPECT_TRUE(EventBus::buffers().empty());
}

TEST(EventBusStressTest, SubscriptionChurnNeitherLosesNorDuplicatesDeliveries) {
  auto sink = CaptureLogSink::install();
  bustest::Statuses statuses;
  statuses.set(ModuleName::cdp, ModuleStatus::operational);
  statuses.set(ModuleName::push, ModuleStatus::operational);
  auto cdp = std::make_shared<RecordingSubscriber>(ModuleName::cdp);
  EventBus::subscribe(cdp);

  // One thread owns push's subscription (the bus's writes are not meant to race each other);
  // publishers and readers run against it.
  std::atomic<bool> stop{false};
  std::vector<std::shared_ptr<RecordingSubscriber>> pushSubscribers;
  std::thread churn([&] {
    while (!stop.load()) {
      auto push = std::make_shared<RecordingSubscriber>(ModuleName::push);
      pushSubscribers.push_back(push);
      EventBus::subscribe(push);
      EventBus::subscriptions();
      EventBus::unsubscribe(push);
    }
  });
  runPublishers([] {
    EventBus::publishTo(ModuleName::cdp, MessageProducer::sdk, std::make_shared<SystemEvent>("c"));
    EventBus::publish(MessageProducer::cdp, std::make_shared<SystemEvent>("b"));
  });
  stop = true;
  churn.join();

  const std::size_t dropped = sink->count(droppedLine(ModuleName::cdp));
  ASSERT_TRUE(waitUntil([&] { return cdp->count() + dropped == 2 * kTotal; }))
      << cdp->count() << " delivered, " << dropped << " dropped";
  EXPECT_EQ(uniqueCount(cdp->receivedIds()), cdp->count());
  std::vector<std::string> pushIds;
  for (const auto& push : pushSubscribers) {
    const auto ids = push->receivedIds();
    pushIds.insert(pushIds.end(), ids.begin(), ids.end());
  }
  EXPECT_EQ(uniqueCount(pushIds), pushIds.size());
}

// Volume run: enough publishes that the delivery queues overflow again and again while push's
// subscription is replaced underneath. Each send must end in exactly one delivery or one drop
// line, which the log lets us count per module.
TEST(EventBusStressTest, EverySendIsDeliveredOnceOrDroppedUnderVolumeAndResubscription) {
  constexpr int kVolumePerPublisher = 20'000;
  constexpr std::size_t kVolumeTotal = kPublishers * kVolumePerPublisher;
  auto sink = CaptureLogSink::install();
  // The bus writes every line it has under these two; other subsystems stay out of memory.
  VORNSdk::setLogger(LogLevel::debug, sink, {LoggerCategory::sdk, LoggerCategory::eventBus});
  bustest::Statuses statuses;
  statuses.set(ModuleName::cdp, ModuleStatus::operational);
  statuses.set(ModuleName::push, ModuleStatus::operational);
  auto cdp = std::make_shared<IdRecordingSubscriber>(ModuleName::cdp);
  auto push = std::make_shared<IdRecordingSubscriber>(ModuleName::push);
  EventBus::subscribe(cdp);
  EventBus::subscribe(push);
  std::vector<std::shared_ptr<Subscription>> subscriptions{
      EventBus::subscriptions().at(ModuleName::cdp),
      EventBus::subscriptions().at(ModuleName::push)};

  // Only this thread writes the table, so reading it back yields the subscription just made.
  std::atomic<bool> publishing{true};
  std::thread churn([&] {
    do {
      EventBus::unsubscribe(push);
      std::this_thread::yield();
      EventBus::subscribe(push);
      subscriptions.push_back(EventBus::subscriptions().at(ModuleName::push));
      std::this_thread::yield();
    } while (publishing.load());
  });
  runPublishers([] { EventBus::publish(MessageProducer::sdk, std::make_shared<SystemEvent>("v")); },
                kVolumePerPublisher);
  publishing = false;
  churn.join();

  // Deliveries already queued still run after unsubscribe, so wait for every queue ever used.
  ASSERT_TRUE(waitUntil(
      [&] {
        for (const auto& subscription : subscriptions) {
          if (subscription->queue().operationCount() != 0)
            return false;
        }
        return true;
      },
      std::chrono::seconds(60)));

  const auto cdpIds = cdp->receivedIds();
  const std::size_t cdpDropped = sink->count(droppedLine(ModuleName::cdp));
  EXPECT_EQ(sink->count(sentLine("v", ModuleName::cdp)), kVolumeTotal);
  EXPECT_EQ(cdpIds.size() + cdpDropped, kVolumeTotal)
      << cdpIds.size() << " delivered, " << cdpDropped << " dropped";
  EXPECT_EQ(uniqueCount(cdpIds), cdpIds.size());

  const auto pushIds = push->receivedIds();
  const std::size_t pushDropped = sink->count(droppedLine(ModuleName::push));
  const std::size_t pushSent = sink->count(sentLine("v", ModuleName::push));
  EXPECT_EQ(pushIds.size() + pushDropped, pushSent)
      << pushIds.size() << " delivered, " << pushDropped << " dropped, " << pushSent << " sent";
  EXPECT_EQ(uniqueCount(pushIds), pushIds.size());
  EXPECT_EQ(sink->count("Message `v` received on the event bus."), kVolumeTotal);
}

TEST(EventBusStressTest, ConcurrentBufferingStaysWithinTheBound) {
  auto sink = CaptureLogSink::install();
  bustest::Statuses statuses;
  statuses.set(ModuleName::cdp, ModuleStatus::initializing);
  statuses.set(ModuleName::push, ModuleStatus::initializing);

  runPublishers(
      [] { EventBus::publish(MessageProducer::sdk, std::make_shared<SystemEvent>("s")); });

  // Buffer updates are two critical sections, so racing publishers may overwrite each
  // other's append; the bound and the integrity of what is kept must still hold.
  const auto buffers = EventBus::buffers();
  for (const ModuleName module : kAllModuleNames) {
    const auto& list = buffers.at(module);
    EXPECT_GT(list.size(), 0u);
    EXPECT_LE(list.size(), EventBus::kMaxBufferedMessages);
  }

  statuses.set(ModuleName::cdp, ModuleStatus::operational);
  auto cdp = std::make_shared<RecordingSubscriber>(ModuleName::cdp);
  EventBus::subscribe(cdp);
  EventBus::sendBufferedMessages(ModuleName::cdp);
  const std::size_t expected = buffers.at(ModuleName::cdp).size();
  ASSERT_TRUE(waitUntil([&] { return cdp->count() == expected; }));
  EXPECT_EQ(uniqueCount(cdp->receivedIds()), expected);
}

}  // namespace
}  // namespace vorn

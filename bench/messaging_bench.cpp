// Hot paths of the event model and the bus: ids, time stamps, custom event validation,
// message building and publishing to subscribed modules with the logger off.
//
// The floors do the same jobs with raw parts: an id from a per-thread pool of RAND_bytes, a
// time stamp strftime'd once per second, and a publish as a small message object handed to
// one worker thread per subscriber through a mutex, a deque and a condition variable.
#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "RawFloors.hpp"
#include "vorn/base/Timestamp.hpp"
#include "vorn/base/Uuid.hpp"
#include "vorn/events/CustomEvent.hpp"
#include "vorn/events/SystemEvent.hpp"
#include "vorn/messaging/EventBus.hpp"
#include "vorn/runtime/OperationQueue.hpp"
#include "vorn/sdk/VORNSdk.hpp"

namespace vorn {
namespace {

// Below Subscription::maxOperations, so the publishing benchmarks never take the drop path.
constexpr int kInFlight = 50;

void BM_MakeUuidString(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(makeUuidString());
}
BENCHMARK(BM_MakeUuidString);

void BM_Floor_RandPoolUuid(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(rawfloor::uuid());
}
BENCHMARK(BM_Floor_RandPoolUuid);

void BM_CurrentTimestamp(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(currentTimestamp());
}
BENCHMARK(BM_CurrentTimestamp);

void BM_Floor_CachedStrftimeTimestamp(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(rawfloor::timestamp());
}
BENCHMARK(BM_Floor_CachedStrftimeTimestamp);

void BM_CustomEventCreate(benchmark::State& state) {
  const Dictionary attributes{{" sku ", "A-1"}, {"price", *Decimal::parse("9.99")}, {"qty", 2}};
  for (auto _ : state)
    benchmark::DoNotOptimize(CustomEvent::create("  Add To Wishlist ", attributes));
}
BENCHMARK(BM_CustomEventCreate);

void BM_MessageMakeFrom(benchmark::State& state) {
  const auto event = CustomEvent::create("e", Dictionary{{"k", 1}});
  for (auto _ : state)
    benchmark::DoNotOptimize(Message::makeFrom(MessageProducer::sdk, event));
}
BENCHMARK(BM_MessageMakeFrom);

class CountingSubscriber : public Subscriber {
 public:
  explicit CountingSubscriber(ModuleName name) : name_(name) {}
  ModuleName name() const override { return name_; }
  void receive(std::shared_ptr<const Message>) override {
    received.fetch_add(1, std::memory_order_relaxed);
  }
  std::atomic<long> received{0};

 private:
  ModuleName name_;
};

// Subscribes one module (cdp; push reads as inactive) with the logger off, and unsubscribes
// it when the benchmark ends.
class OneSubscriber {
 public:
  OneSubscriber() : subscriber_(std::make_shared<CountingSubscriber>(ModuleName::cdp)) {
    VORNSdk::setLogger(LogLevel::none, nullptr);
    EventBus::setStatusSource([](ModuleName module) {
      return module == ModuleName::cdp ? ModuleStatus::operational : ModuleStatus::inactive;
    });
    EventBus::subscribe(subscriber_);
    subscription_ = EventBus::subscriptions().at(ModuleName::cdp);
  }
  ~OneSubscriber() {
    subscription_->queue().waitUntilAllOperationsAreFinished();
    EventBus::unsubscribe(subscriber_);
    EventBus::setStatusSource(nullptr);
  }

  long received() const { return subscriber_->received.load(std::memory_order_relaxed); }
  OperationQueue& queue() { return subscription_->queue(); }

 private:
  std::shared_ptr<CountingSubscriber> subscriber_;
  std::shared_ptr<Subscription> subscription_;
};

std::shared_ptr<const Event> customEventWithThreeAttributes() {
  return CustomEvent::create(
      "Add To Wishlist",
      Dictionary{{"sku", "A-1"}, {"price", *Decimal::parse("9.99")}, {"qty", 2}});
}

// Time on the publishing thread per publish() call. Every kInFlight calls the timer stops
// while the deliveries finish, so no message is dropped and the wait is not counted; the
// deliveries themselves run on pool threads during the timed calls and compete for the cores.
void BM_Publish_CallerCost(benchmark::State& state) {
  OneSubscriber bus;
  const auto event = customEventWithThreeAttributes();
  int published = 0;
  for (auto _ : state) {
    EventBus::publish(MessageProducer::sdk, event);
    if (++published == kInFlight) {
      state.PauseTiming();
      bus.queue().waitUntilAllOperationsAreFinished();
      state.ResumeTiming();
      published = 0;
    }
  }
  bus.queue().waitUntilAllOperationsAreFinished();
  if (bus.received() != static_cast<long>(state.iterations()))
    state.SkipWithError("deliveries missing: a message was dropped");
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Publish_CallerCost);

// Sustained deliveries per second, publish to receive. Each iteration publishes a batch and
// waits until the subscriber has counted all of it; within the batch the publisher keeps at
// most kInFlight deliveries outstanding, so none reaches the drop bound.
void BM_Publish_EndToEnd(benchmark::State& state) {
  const long batch = state.range(0);
  OneSubscriber bus;
  const auto event = customEventWithThreeAttributes();
  long published = 0;
  for (auto _ : state) {
    for (long i = 0; i < batch; ++i) {
      if (published - bus.received() >= kInFlight) {
        while (bus.queue().operationCount() >= static_cast<std::size_t>(kInFlight))
          std::this_thread::yield();
      }
      EventBus::publish(MessageProducer::sdk, event);
      ++published;
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (bus.received() < published) {
      if (std::chrono::steady_clock::now() > deadline) {
        state.SkipWithError("deliveries missing: a message was dropped");
        return;
      }
      std::this_thread::yield();
    }
  }
  state.SetItemsProcessed(state.iterations() * batch);
}
BENCHMARK(BM_Publish_EndToEnd)->Arg(1000)->UseRealTime();

// Publishes to both modules and waits for the deliveries in batches below the queue bound, so
// the figure is end-to-end throughput rather than the cost of dropping.
void BM_PublishToTwoSubscribers(benchmark::State& state) {
  EventBus::setStatusSource([](ModuleName) { return ModuleStatus::operational; });
  auto cdp = std::make_shared<CountingSubscriber>(ModuleName::cdp);
  auto push = std::make_shared<CountingSubscriber>(ModuleName::push);
  EventBus::subscribe(cdp);
  EventBus::subscribe(push);
  const auto subscriptions = EventBus::subscriptions();
  const auto event = std::make_shared<SystemEvent>("Screen View");
  int batch = 0;
  for (auto _ : state) {
    EventBus::publish(MessageProducer::sdk, event);
    if (++batch == kInFlight) {
      for (const auto& [module, subscription] : subscriptions)
        subscription->queue().waitUntilAllOperationsAreFinished();
      batch = 0;
    }
  }
  for (const auto& [module, subscription] : subscriptions)
    subscription->queue().waitUntilAllOperationsAreFinished();
  if (cdp->received + push->received != 2 * static_cast<long>(state.iterations()))
    state.SkipWithError("deliveries missing: a message was dropped");
  EventBus::unsubscribe(cdp);
  EventBus::unsubscribe(push);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PublishToTwoSubscribers);

// The floor's message: what a delivery carries, built per publish as the bus builds its own.
struct RawMessage {
  std::string id;
  std::string name;
  std::string category;
  std::shared_ptr<const void> payload;
};

// One subscriber as the floor sees it: a worker thread and a delivery count.
class RawSubscriber {
 public:
  void deliver(std::shared_ptr<const RawMessage> message) {
    queue_.async([this, message = std::move(message)] {
      benchmark::DoNotOptimize(message->name.data());
      received_.fetch_add(1, std::memory_order_relaxed);
    });
  }
  // Returns once every delivery handed over before the call has run.
  void drain() {
    queue_.async([this] { drained_.raise(); });
    drained_.waitAndReset();
  }
  long received() const { return received_.load(std::memory_order_relaxed); }

 private:
  std::atomic<long> received_{0};
  rawfloor::Signal drained_;
  rawfloor::Queue queue_;  // last: its worker stops before the fields it uses go
};

// Publishing with raw parts: the message built, the subscriber table read under a lock, one
// hand-off per subscriber.
class RawBus {
 public:
  explicit RawBus(int subscribers) : subscribers_(static_cast<std::size_t>(subscribers)) {}

  void publish(const std::string& id, const std::string& name,
               const std::shared_ptr<const void>& payload) {
    auto message = std::make_shared<const RawMessage>(RawMessage{id, name, "custom", payload});
    std::lock_guard lock(mutex_);
    for (auto& subscriber : subscribers_)
      subscriber.deliver(message);
  }

  RawSubscriber& subscriber(std::size_t i) { return subscribers_[i]; }
  std::size_t size() const { return subscribers_.size(); }

 private:
  std::mutex mutex_;
  std::deque<RawSubscriber> subscribers_;  // a deque: its elements never move
};

const std::string kEventId = "6F1C2A8E-0B1D-4C3E-9A55-0D2E7B9C4F10";
const std::string kEventName = "Add To Wishlist";

void BM_Floor_Publish_CallerCost(benchmark::State& state) {
  RawBus bus(1);
  const auto payload = std::make_shared<int>(0);
  int published = 0;
  for (auto _ : state) {
    bus.publish(kEventId, kEventName, payload);
    if (++published == kInFlight) {
      state.PauseTiming();
      bus.subscriber(0).drain();
      state.ResumeTiming();
      published = 0;
    }
  }
  bus.subscriber(0).drain();
  if (bus.subscriber(0).received() != static_cast<long>(state.iterations()))
    state.SkipWithError("deliveries missing");
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Floor_Publish_CallerCost);

void BM_Floor_Publish_EndToEnd(benchmark::State& state) {
  const long batch = state.range(0);
  RawBus bus(1);
  RawSubscriber& subscriber = bus.subscriber(0);
  const auto payload = std::make_shared<int>(0);
  long published = 0;
  for (auto _ : state) {
    for (long i = 0; i < batch; ++i) {
      while (published - subscriber.received() >= kInFlight)
        std::this_thread::yield();
      bus.publish(kEventId, kEventName, payload);
      ++published;
    }
    while (subscriber.received() < published)
      std::this_thread::yield();
  }
  state.SetItemsProcessed(state.iterations() * batch);
}
BENCHMARK(BM_Floor_Publish_EndToEnd)->Arg(1000)->UseRealTime();

void BM_Floor_PublishToTwoSubscribers(benchmark::State& state) {
  RawBus bus(2);
  const auto payload = std::make_shared<int>(0);
  int batch = 0;
  for (auto _ : state) {
    bus.publish(kEventId, "Screen View", payload);
    if (++batch == kInFlight) {
      for (std::size_t i = 0; i < bus.size(); ++i)
        bus.subscriber(i).drain();
      batch = 0;
    }
  }
  for (std::size_t i = 0; i < bus.size(); ++i)
    bus.subscriber(i).drain();
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Floor_PublishToTwoSubscribers);

}  // namespace
}  // namespace vorn

BENCHMARK_MAIN();

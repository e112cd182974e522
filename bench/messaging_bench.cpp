// Hot paths of the event model and the bus: ids, time stamps, custom event validation,
// message building and publishing to subscribed modules with the logger off.
//
// BM_Floor_* time, one by one, the parts no publish can avoid: an id for the event, a time
// stamp for the message, one lock of the subscription table and one hand-off to a delivery
// queue. Their sum is the floor to hold BM_Publish_CallerCost against.
#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <thread>

#include "vorn/base/Timestamp.hpp"
#include "vorn/base/Uuid.hpp"
#include "vorn/events/CustomEvent.hpp"
#include "vorn/events/SystemEvent.hpp"
#include "vorn/messaging/EventBus.hpp"
#include "vorn/runtime/BlockOperation.hpp"
#include "vorn/runtime/OperationQueue.hpp"
#include "vorn/sdk/VORNSdk.hpp"

namespace vorn {
namespace {

// Below Subscription::maxOperations, so the publishing benchmarks never take the drop path.
constexpr int kInFlight = 50;

void BM_Floor_Uuid(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(makeUuidString());
}
BENCHMARK(BM_Floor_Uuid)->ThreadRange(1, 2);

void BM_Floor_Timestamp(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(currentTimestamp());
}
BENCHMARK(BM_Floor_Timestamp);

void BM_Floor_MutexLockUnlock(benchmark::State& state) {
  std::mutex mutex;
  for (auto _ : state) {
    mutex.lock();
    benchmark::ClobberMemory();
    mutex.unlock();
  }
}
BENCHMARK(BM_Floor_MutexLockUnlock);

// Building an empty operation and adding it; the queue is drained untimed every kInFlight
// adds, as the publishing benchmark does, so both see the same queue depths.
void BM_Floor_QueueHandOff(benchmark::State& state) {
  OperationQueue queue;
  int added = 0;
  for (auto _ : state) {
    queue.addOperation(std::make_shared<BlockOperation>([] {}));
    if (++added == kInFlight) {
      state.PauseTiming();
      queue.waitUntilAllOperationsAreFinished();
      state.ResumeTiming();
      added = 0;
    }
  }
  queue.waitUntilAllOperationsAreFinished();
}
BENCHMARK(BM_Floor_QueueHandOff);

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
    if (++batch == 50) {
      for (const auto& [module, subscription] : subscriptions)
        subscription->queue().waitUntilAllOperationsAreFinished();
      batch = 0;
    }
  }
  for (const auto& [module, subscription] : subscriptions)
    subscription->queue().waitUntilAllOperationsAreFinished();
  EventBus::unsubscribe(cdp);
  EventBus::unsubscribe(push);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PublishToTwoSubscribers);

}  // namespace
}  // namespace vorn

BENCHMARK_MAIN();

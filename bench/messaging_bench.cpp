// Hot paths of the event model and the bus: ids, time stamps, custom event validation,
// message building and publishing to subscribed modules with the logger off.
#include <benchmark/benchmark.h>

#include <atomic>
#include <memory>

#include "vorn/core/Timestamp.hpp"
#include "vorn/core/Uuid.hpp"
#include "vorn/events/CustomEvent.hpp"
#include "vorn/events/SystemEvent.hpp"
#include "vorn/messaging/EventBus.hpp"

namespace vorn {
namespace {

void BM_MakeUuidString(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(makeUuidString());
}
BENCHMARK(BM_MakeUuidString)->ThreadRange(1, 2);

void BM_CurrentTimestamp(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(currentTimestamp());
}
BENCHMARK(BM_CurrentTimestamp);

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

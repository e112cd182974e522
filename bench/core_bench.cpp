// SDK start-up and state, on the default SQLite backends: the time from initializeSdk() to
// READY with two modules that start at once (in a fresh data directory, where the key store
// and the registration ids are made, and in a warm one, where they are read), the cost of
// initializeSdk() on the caller's thread (against a raw hand-off of a configuration-sized
// closure to one worker thread), and the cost of state(). The start-up's deliberate waits
// never run here: the key store answers the first probe and the modules report at once, so the
// wait for them ends as soon as both have.

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>
#include <string>

#include "RawFloors.hpp"
#include "vorn/core/ConfigBuilder.hpp"
#include "vorn/platform/Platform.hpp"
#include "vorn/sdk/VORNSdk.hpp"
#include "vorn/testing/FakeModule.hpp"
#include "vorn/testing/FakeModuleConfig.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"
#include "vorn/testing/Wait.hpp"

namespace {

using vorn::ModuleName;
using vorn::VORNSdk;

void registerModules() {
  static const bool registered = [] {
    vorn::testing::FakeModule::registerClass(ModuleName::push, {.version = "8.1.0"});
    vorn::testing::FakeModule::registerClass(ModuleName::cdp, {.version = "2.0.2"});
    return true;
  }();
  benchmark::DoNotOptimize(registered);
}

std::shared_ptr<const vorn::ModuleConfig> moduleConfig(ModuleName name, const std::string& appId) {
  // Configurations are compared by their stored properties only.
  return std::make_shared<vorn::testing::FakeModuleConfig>(
      name, appId, std::vector<vorn::ModuleConfig::Property>{{"appId", vorn::Value(appId)}});
}

// Both modules of `appId`; `reported` hears both outcomes.
vorn::Config configuration(const std::string& appId, vorn::testing::Latch* reported) {
  const auto report = [reported](vorn::OperationResult) {
    if (reported)
      reported->countDown();
  };
  return vorn::ConfigBuilder()
      .setPush(moduleConfig(ModuleName::push, appId), report)
      .setCdp(moduleConfig(ModuleName::cdp, appId), report)
      .build();
}

// A start-up with a configuration unlike the last one (so it is not skipped), to READY.
bool startToReady(int round) {
  vorn::testing::Latch reported(2);
  VORNSdk::initializeSdk(configuration(round % 2 ? "APP1" : "APP2", &reported));
  return reported.wait() && vorn::testing::waitUntil([] {
           return VORNSdk::initializationState() == vorn::InitializationState::READY;
         });
}

void BM_StartUpToReady_FreshDirectory(benchmark::State& state) {
  registerModules();
  int round = 0;
  for (auto _ : state) {
    state.PauseTiming();
    auto directory = std::make_unique<vorn::testing::TemporaryDirectory>();
    vorn::Platform::install(vorn::Platform::defaultPlatform(directory->path()));
    state.ResumeTiming();
    if (!startToReady(++round))
      state.SkipWithError("start-up did not reach READY");
    state.PauseTiming();
    VORNSdk::tearDownModule(ModuleName::push);
    VORNSdk::tearDownModule(ModuleName::cdp);
    directory.reset();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_StartUpToReady_FreshDirectory)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_StartUpToReady_WarmDirectory(benchmark::State& state) {
  registerModules();
  vorn::testing::TemporaryDirectory directory;
  vorn::Platform::install(vorn::Platform::defaultPlatform(directory.path()));
  int round = 0;
  startToReady(++round);  // makes the keys, the registration ids and the migration flag
  for (auto _ : state) {
    if (!startToReady(++round))
      state.SkipWithError("start-up did not reach READY");
  }
}
BENCHMARK(BM_StartUpToReady_WarmDirectory)->Unit(benchmark::kMillisecond)->UseRealTime();

// Only the hand-over to the start-up queue; the start-ups themselves repeat the ready
// configuration and are skipped there.
void BM_InitializeSdkCall(benchmark::State& state) {
  registerModules();
  vorn::testing::TemporaryDirectory directory;
  vorn::Platform::install(vorn::Platform::defaultPlatform(directory.path()));
  startToReady(1);
  const vorn::Config repeat = configuration("APP1", nullptr);
  for (auto _ : state)
    VORNSdk::initializeSdk(repeat);
  vorn::testing::Latch drained(2);
  VORNSdk::initializeSdk(configuration("APP1", &drained));
  if (!drained.wait(std::chrono::minutes(1)))
    state.SkipWithError("start-up queue did not drain");
}
BENCHMARK(BM_InitializeSdkCall);

// What the call must do at least: copy a configuration's worth of shared pointers and
// callbacks into a closure and hand it to one worker thread.
void BM_Floor_InitializeSdkHandOff(benchmark::State& state) {
  struct RawConfig {
    std::shared_ptr<const int> push;
    std::shared_ptr<const int> cdp;
    std::function<void(int)> pushReport;
    std::function<void(int)> cdpReport;
  };
  const RawConfig config{std::make_shared<int>(1), std::make_shared<int>(2), [](int) {},
                         [](int) {}};
  rawfloor::Queue queue;
  for (auto _ : state) {
    RawConfig copy = config;
    queue.async([copy = std::move(copy)] { benchmark::DoNotOptimize(copy.push.get()); });
  }
  rawfloor::Signal drained;
  queue.async([&drained] { drained.raise(); });
  drained.waitAndReset();
}
BENCHMARK(BM_Floor_InitializeSdkHandOff);

void BM_State(benchmark::State& state) {
  registerModules();
  vorn::testing::TemporaryDirectory directory;
  vorn::Platform::install(vorn::Platform::defaultPlatform(directory.path()));
  startToReady(1);
  for (auto _ : state)
    benchmark::DoNotOptimize(VORNSdk::state());
}
BENCHMARK(BM_State);

}  // namespace

BENCHMARK_MAIN();

// The cost of a log line at a call site whose message concatenates three pieces: disabled
// (the normal state of a shipped app) and filtered out by category, each against one relaxed
// atomic load and test; enabled with a sink that drops the line, against building the same
// string and handing it to a sink under a mutex.
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <new>
#include <string>

#include "vorn/logging/Log.hpp"
#include "vorn/sdk/VORNSdk.hpp"

// Counts heap allocations so each benchmark can report how many one log line makes.
namespace {
std::atomic<long> gAllocations{0};
}

void* operator new(std::size_t size) {
  gAllocations.fetch_add(1, std::memory_order_relaxed);
  if (void* p = std::malloc(size == 0 ? 1 : size))
    return p;
  throw std::bad_alloc();
}
// GCC cannot see that these replace the global operators as a pair and warns on free().
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void operator delete(void* p) noexcept {
  std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
  std::free(p);
}
#pragma GCC diagnostic pop

namespace {

void reportAllocations(benchmark::State& state, long before) {
  state.counters["allocs/line"] = benchmark::Counter(
      static_cast<double>(gAllocations.load() - before) / static_cast<double>(state.iterations()));
}

class NullSink : public vorn::LogOutputter {
 public:
  void out(vorn::LogLevel, std::string_view, vorn::LoggerCategory,
           std::string_view message) override {
    benchmark::DoNotOptimize(message.data());
    lines.fetch_add(1, std::memory_order_relaxed);
  }
  std::atomic<long> lines{0};
};

// The floor's sink: a plain virtual call, as any pluggable sink needs.
class RawSink {
 public:
  virtual ~RawSink() = default;
  virtual void out(std::string_view message) = 0;
};

class RawNullSink : public RawSink {
 public:
  void out(std::string_view message) override { benchmark::DoNotOptimize(message.data()); }
};

const std::string kName = "cdp";

void BM_DisabledLogLine(benchmark::State& state) {
  vorn::VORNSdk::setLogger(vorn::LogLevel::none, nullptr);
  const long before = gAllocations.load();
  for (auto _ : state) {
    VORN_LOG_DEBUG(vorn::LoggerCategory::sdk,
                   "Cancelling all operations in the " + kName + " queue.");
  }
  reportAllocations(state, before);
}
BENCHMARK(BM_DisabledLogLine);

// The floor of a disabled or filtered line: one relaxed load of a gate word and a bit test.
void BM_Floor_AtomicGateTest(benchmark::State& state) {
  static std::atomic<std::uint32_t> gate{0};
  const long before = gAllocations.load();
  for (auto _ : state) {
    const bool on = (gate.load(std::memory_order_relaxed) & 0x10u) != 0;
    benchmark::DoNotOptimize(on);
  }
  reportAllocations(state, before);
}
BENCHMARK(BM_Floor_AtomicGateTest);

// The floor of an enabled line: the message built, then passed to a sink under a mutex.
void BM_Floor_BuildLineToSinkUnderMutex(benchmark::State& state) {
  std::mutex mutex;
  RawNullSink sink;
  RawSink& out = sink;
  const long before = gAllocations.load();
  for (auto _ : state) {
    std::string message = "Cancelling all operations in the " + kName + " queue.";
    std::lock_guard lock(mutex);
    out.out(message);
  }
  reportAllocations(state, before);
}
BENCHMARK(BM_Floor_BuildLineToSinkUnderMutex);

void BM_FilteredOutCategory(benchmark::State& state) {
  vorn::VORNSdk::setLogger(vorn::LogLevel::debug, std::make_shared<NullSink>(),
                           {vorn::LoggerCategory::network});
  const long before = gAllocations.load();
  for (auto _ : state) {
    VORN_LOG_DEBUG(vorn::LoggerCategory::sdk,
                   "Cancelling all operations in the " + kName + " queue.");
  }
  reportAllocations(state, before);
  vorn::VORNSdk::clearLoggerFilters();
}
BENCHMARK(BM_FilteredOutCategory);

void BM_EnabledLogLineToNullSink(benchmark::State& state) {
  const auto sink = std::make_shared<NullSink>();
  vorn::VORNSdk::setLogger(vorn::LogLevel::debug, sink);
  const long before = gAllocations.load();
  for (auto _ : state) {
    VORN_LOG_DEBUG(vorn::LoggerCategory::sdk,
                   "Cancelling all operations in the " + kName + " queue.");
  }
  reportAllocations(state, before);
  if (sink->lines.load() < static_cast<long>(state.iterations()))
    state.SkipWithError("lines did not reach the sink");
  vorn::VORNSdk::setLogger(vorn::LogLevel::none, nullptr);
}
BENCHMARK(BM_EnabledLogLineToNullSink);

}  // namespace

BENCHMARK_MAIN();

// The cost of a log line at a call site whose message concatenates three pieces: disabled
// (the normal state of a shipped app), against building the same string eagerly, and
// enabled with a sink that drops the line.
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
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
  }
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

void BM_EagerStringBuild(benchmark::State& state) {
  const long before = gAllocations.load();
  for (auto _ : state) {
    std::string message = "Cancelling all operations in the " + kName + " queue.";
    benchmark::DoNotOptimize(message.data());
  }
  reportAllocations(state, before);
}
BENCHMARK(BM_EagerStringBuild);

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
  vorn::VORNSdk::setLogger(vorn::LogLevel::debug, std::make_shared<NullSink>());
  const long before = gAllocations.load();
  for (auto _ : state) {
    VORN_LOG_DEBUG(vorn::LoggerCategory::sdk,
                   "Cancelling all operations in the " + kName + " queue.");
  }
  reportAllocations(state, before);
  vorn::VORNSdk::setLogger(vorn::LogLevel::none, nullptr);
}
BENCHMARK(BM_EnabledLogLineToNullSink);

}  // namespace

BENCHMARK_MAIN();

// DispatchQueue and OperationQueue against the simplest thing that could work: one worker
// thread behind a mutex, a deque and a condition variable (rawfloor::Queue). Throughput posts a
// batch and waits for its last closure; the round trip posts one closure and waits for it.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

#include "RawFloors.hpp"
#include "vorn/runtime/BlockOperation.hpp"
#include "vorn/runtime/DispatchQueue.hpp"
#include "vorn/runtime/OperationQueue.hpp"

namespace {

constexpr std::int64_t kBatch = 10000;
constexpr std::int64_t kOperations = 1000;

template <class Queue>
void throughput(benchmark::State& state, Queue& queue, std::int64_t batch) {
  rawfloor::Signal done;
  std::int64_t counter = 0;  // touched only by the queue's worker
  for (auto _ : state) {
    for (std::int64_t i = 1; i < batch; ++i)
      queue.async([&counter] { benchmark::DoNotOptimize(++counter); });
    queue.async([&done] { done.raise(); });
    done.waitAndReset();
  }
  if (counter != state.iterations() * (batch - 1))
    state.SkipWithError("a closure did not run");
  state.SetItemsProcessed(state.iterations() * batch);
}

template <class Queue>
void roundTrip(benchmark::State& state, Queue& queue) {
  rawfloor::Signal done;
  for (auto _ : state) {
    queue.async([&done] { done.raise(); });
    done.waitAndReset();
  }
  state.SetItemsProcessed(state.iterations());
}

void BM_DispatchQueueThroughput(benchmark::State& state) {
  vorn::DispatchQueue queue("bench.throughput");
  throughput(state, queue, kBatch);
}
BENCHMARK(BM_DispatchQueueThroughput)->UseRealTime();

void BM_Floor_MutexQueueThroughput(benchmark::State& state) {
  rawfloor::Queue queue;
  throughput(state, queue, kBatch);
}
BENCHMARK(BM_Floor_MutexQueueThroughput)->UseRealTime();

void BM_DispatchQueueRoundTrip(benchmark::State& state) {
  vorn::DispatchQueue queue("bench.round-trip");
  roundTrip(state, queue);
}
BENCHMARK(BM_DispatchQueueRoundTrip)->UseRealTime();

void BM_Floor_MutexQueueRoundTrip(benchmark::State& state) {
  rawfloor::Queue queue;
  roundTrip(state, queue);
}
BENCHMARK(BM_Floor_MutexQueueRoundTrip)->UseRealTime();

// sync() on an idle serial queue runs the closure on the calling thread while it holds the
// queue.
void BM_DispatchQueueSyncIdle(benchmark::State& state) {
  vorn::DispatchQueue queue("bench.sync");
  std::int64_t counter = 0;
  for (auto _ : state)
    queue.sync([&counter] { benchmark::DoNotOptimize(++counter); });
  if (counter != state.iterations())
    state.SkipWithError("a closure did not run");
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DispatchQueueSyncIdle);

// The least a serial sync can do: take the queue's lock and run the closure under it.
void BM_Floor_MutexRunClosure(benchmark::State& state) {
  std::mutex mutex;
  std::int64_t counter = 0;
  const auto run = [&mutex](const std::function<void()>& work) {
    std::lock_guard lock(mutex);
    work();
  };
  for (auto _ : state)
    run([&counter] { benchmark::DoNotOptimize(++counter); });
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Floor_MutexRunClosure);

// A thousand empty operations on a serial operation queue, added and waited for.
void BM_OperationQueueSerialAddAndRun(benchmark::State& state) {
  vorn::OperationQueue queue;
  queue.setMaxConcurrentOperationCount(1);
  for (auto _ : state) {
    for (std::int64_t i = 0; i < kOperations; ++i)
      queue.addOperation(std::make_shared<vorn::BlockOperation>([] {}));
    queue.waitUntilAllOperationsAreFinished();
  }
  state.SetItemsProcessed(state.iterations() * kOperations);
}
BENCHMARK(BM_OperationQueueSerialAddAndRun)->UseRealTime();

// The same thousand closures through the one-worker queue, each on the heap as an operation
// object is, the caller waiting for the last.
void BM_Floor_MutexQueueSerialAddAndRun(benchmark::State& state) {
  rawfloor::Queue queue;
  rawfloor::Signal done;
  for (auto _ : state) {
    for (std::int64_t i = 1; i < kOperations; ++i) {
      auto work = std::make_shared<std::function<void()>>([] {});
      queue.async([work] { (*work)(); });
    }
    queue.async([&done] { done.raise(); });
    done.waitAndReset();
  }
  state.SetItemsProcessed(state.iterations() * kOperations);
}
BENCHMARK(BM_Floor_MutexQueueSerialAddAndRun)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();

// DispatchQueue hand-off against the simplest thing that could work (one consumer thread
// behind a mutex and a condition variable), and OperationQueue start-up cost.

#include <benchmark/benchmark.h>

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "vorn/runtime/BlockOperation.hpp"
#include "vorn/runtime/DispatchQueue.hpp"
#include "vorn/runtime/OperationQueue.hpp"

namespace {

constexpr std::int64_t kBatch = 10000;

// The baseline: one dedicated thread popping closures one at a time.
class MutexQueue {
 public:
  MutexQueue() : consumer_([this] { run(); }) {}
  ~MutexQueue() {
    {
      std::lock_guard lock(mutex_);
      stopping_ = true;
    }
    available_.notify_one();
    consumer_.join();
  }

  void async(std::function<void()> work) {
    {
      std::lock_guard lock(mutex_);
      items_.push_back(std::move(work));
    }
    available_.notify_one();
  }

 private:
  void run() {
    std::unique_lock lock(mutex_);
    for (;;) {
      available_.wait(lock, [this] { return stopping_ || !items_.empty(); });
      if (items_.empty()) {
        return;
      }
      std::function<void()> work = std::move(items_.front());
      items_.pop_front();
      lock.unlock();
      work();
      lock.lock();
    }
  }

  std::mutex mutex_;
  std::condition_variable available_;
  std::deque<std::function<void()>> items_;
  bool stopping_ = false;
  std::thread consumer_;
};

// What the posting thread blocks on until the last posted closure has run.
class Signal {
 public:
  void raise() {
    std::lock_guard lock(mutex_);
    raised_ = true;
    changed_.notify_one();
  }
  void waitAndReset() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return raised_; });
    raised_ = false;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool raised_ = false;
};

template <class Queue>
void throughput(benchmark::State& state, Queue& queue) {
  Signal done;
  std::int64_t counter = 0;  // touched only by the queue's consumer
  for (auto _ : state) {
    for (std::int64_t i = 1; i < kBatch; ++i) {
      queue.async([&counter] { benchmark::DoNotOptimize(++counter); });
    }
    queue.async([&done] { done.raise(); });
    done.waitAndReset();
  }
  state.SetItemsProcessed(state.iterations() * kBatch);
}

template <class Queue>
void roundTrip(benchmark::State& state, Queue& queue) {
  Signal done;
  for (auto _ : state) {
    queue.async([&done] { done.raise(); });
    done.waitAndReset();
  }
  state.SetItemsProcessed(state.iterations());
}

void BM_DispatchQueueThroughput(benchmark::State& state) {
  vorn::DispatchQueue queue("bench.throughput");
  throughput(state, queue);
}
BENCHMARK(BM_DispatchQueueThroughput)->UseRealTime();

void BM_MutexQueueThroughput(benchmark::State& state) {
  MutexQueue queue;
  throughput(state, queue);
}
BENCHMARK(BM_MutexQueueThroughput)->UseRealTime();

void BM_DispatchQueueRoundTrip(benchmark::State& state) {
  vorn::DispatchQueue queue("bench.round-trip");
  roundTrip(state, queue);
}
BENCHMARK(BM_DispatchQueueRoundTrip)->UseRealTime();

void BM_MutexQueueRoundTrip(benchmark::State& state) {
  MutexQueue queue;
  roundTrip(state, queue);
}
BENCHMARK(BM_MutexQueueRoundTrip)->UseRealTime();

void BM_DispatchQueueSyncIdle(benchmark::State& state) {
  vorn::DispatchQueue queue("bench.sync");
  std::int64_t counter = 0;
  for (auto _ : state) {
    queue.sync([&counter] { benchmark::DoNotOptimize(++counter); });
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DispatchQueueSyncIdle);

void BM_OperationQueueSerialAddAndRun(benchmark::State& state) {
  vorn::OperationQueue queue;
  queue.setMaxConcurrentOperationCount(1);
  constexpr std::int64_t kOperations = 1000;
  for (auto _ : state) {
    for (std::int64_t i = 0; i < kOperations; ++i) {
      queue.addOperation(std::make_shared<vorn::BlockOperation>([] {}));
    }
    queue.waitUntilAllOperationsAreFinished();
  }
  state.SetItemsProcessed(state.iterations() * kOperations);
}
BENCHMARK(BM_OperationQueueSerialAddAndRun)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();

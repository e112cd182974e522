// The demo: configures the SDK's logger with a sink that prints, runs work on a module's
// task queue and on a serial dispatch queue, shows a time-out and the full-queue rule, and
// prints what happened.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "vorn/core/ModuleQueues.hpp"
#include "vorn/logging/ModuleLogger.hpp"
#include "vorn/messaging/BaseOperation.hpp"
#include "vorn/runtime/Atomic.hpp"
#include "vorn/runtime/BlockOperation.hpp"
#include "vorn/runtime/DispatchGroup.hpp"
#include "vorn/runtime/DispatchQueue.hpp"
#include "vorn/sdk/VORNSdk.hpp"

namespace {

using namespace std::chrono_literals;

// Prints every line with its level, subsystem and category.
class PrintingSink : public vorn::LogOutputter {
 public:
  void out(vorn::LogLevel level, std::string_view subsystem, vorn::LoggerCategory category,
           std::string_view message) override {
    std::lock_guard guard(mutex_);
    std::printf("  [%d %.*s/%.*s] %.*s\n", vorn::rawValue(level),
                static_cast<int>(subsystem.size()), subsystem.data(),
                static_cast<int>(vorn::rawValue(category).size()), vorn::rawValue(category).data(),
                static_cast<int>(message.size()), message.data());
  }

 private:
  std::mutex mutex_;
};

// Never finishes on its own: only its time-out ends it.
class StuckOperation : public vorn::BaseOperation {
 public:
  using BaseOperation::BaseOperation;
  void main() override {}
};

void serialQueueAndAtomic() {
  std::printf("\n1. 1000 increments from 4 threads through an Atomic, then a serial queue\n");
  vorn::Atomic<int> counter(0);
  std::thread threads[4];
  for (auto& thread : threads) {
    thread = std::thread([&] {
      for (int i = 0; i < 250; ++i)
        counter.mutate([](int& value) { ++value; });
    });
  }
  for (auto& thread : threads)
    thread.join();
  vorn::DispatchQueue queue("com.example.demo.serial");
  vorn::DispatchGroup group;
  std::string order;
  for (char c : std::string("abcdef")) {
    group.enter();
    queue.async([&, c] {
      order.push_back(c);
      group.leave();
    });
  }
  group.wait(5s);
  std::printf("  counter = %d, serial order = %s\n", counter.read(), order.c_str());
}

void moduleQueue() {
  std::printf("\n2. Three operations on the push module's task queue\n");
  std::atomic<int> ran{0};
  for (int i = 0; i < 3; ++i) {
    vorn::ModuleQueues::addOperation(std::make_shared<vorn::BlockOperation>([&] { ++ran; }),
                                     vorn::ModuleName::push);
  }
  vorn::ModuleQueues::queue(vorn::ModuleName::push)->cancelAll();
  while (vorn::ModuleQueues::pendingOperationCount(vorn::ModuleName::push).value_or(0) > 0) {
    std::this_thread::sleep_for(1ms);
  }
  std::printf("  ran %d of 3 before the queue was cancelled; cdp queue: %s\n", ran.load(),
              vorn::ModuleQueues::pendingOperationCount(vorn::ModuleName::cdp) ? "some" : "none");
  vorn::ModuleQueues::removeQueue(vorn::ModuleName::push);
}

void timeOut() {
  std::printf("\n3. An operation with a 1.5 s time-out that never finishes by itself\n");
  auto operation = std::make_shared<StuckOperation>(1.5);
  const auto started = std::chrono::steady_clock::now();
  operation->start();
  while (!operation->isFinished())
    std::this_thread::sleep_for(10ms);
  const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now() - started);
  std::printf("  timed out: %s after %lld ms (whole seconds only)\n",
              operation->operationTimedOut() ? "yes" : "no",
              static_cast<long long>(elapsed.count()));
  operation->start();
}

void moduleLogger() {
  std::printf("\n4. A module logger scrubbing its secrets\n");
  vorn::ModuleLogger logger(vorn::ModuleName::cdp, {"s3cr3t"});
  logger.w(vorn::LoggerCategory::network, "token S3CR3T sent");
}

}  // namespace

int main() {
  std::printf("vornsdk demo\n");
  vorn::VORNSdk::setLogger(vorn::LogLevel::debug, std::make_shared<PrintingSink>());
  serialQueueAndAtomic();
  moduleQueue();
  timeOut();
  moduleLogger();
  std::printf("\ndone\n");
  return 0;
}

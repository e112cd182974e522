#include "vorn/core/ModuleQueue.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "vorn/core/ModuleQueues.hpp"
#include "vorn/runtime/BlockOperation.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FakePendingOperations.hpp"
#include "vorn/testing/TimeScale.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;
using testing::waitUntil;

// A closed gate that operations wait at until the test opens it.
class Gate {
 public:
  void open() {
    {
      std::lock_guard guard(mutex_);
      open_ = true;
    }
    opened_.notify_all();
  }
  void pass() {
    std::unique_lock lock(mutex_);
    opened_.wait(lock, [&] { return open_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable opened_;
  bool open_ = false;
};

std::vector<std::shared_ptr<Operation>> fill(ModuleQueue& queue, Gate& gate, std::size_t count) {
  std::vector<std::shared_ptr<Operation>> added;
  for (std::size_t i = 0; i < count; ++i) {
    added.push_back(std::make_shared<BlockOperation>([&gate] { gate.pass(); }));
    queue.addOperation(added.back());
  }
  return added;
}

TEST(ModuleQueue, NameLimitAndDeadline) {
  const auto before = std::chrono::system_clock::now();
  ModuleQueue queue(ModuleName::push);
  EXPECT_EQ(queue.name(), "vornsdk.module.push.tasks");
  EXPECT_EQ(ModuleQueues::queueName(ModuleName::cdp), "vornsdk.module.cdp.tasks");
  EXPECT_EQ(queue.limit(), 100u);
  EXPECT_GE(queue.deadline(), before + std::chrono::seconds(5));
  EXPECT_LE(queue.deadline(), std::chrono::system_clock::now() + std::chrono::seconds(5));
  EXPECT_EQ(queue.operationCount(), 0u);
}

TEST(ModuleQueue, RunsOneAtATimeInOrder) {
  ModuleQueue queue(ModuleName::cdp);
  std::mutex mutex;
  std::vector<int> order;
  std::atomic<int> running{0};
  std::atomic<bool> overlapped{false};
  for (int i = 0; i < 50; ++i) {
    queue.addOperation(std::make_shared<BlockOperation>([&, i] {
      if (running.fetch_add(1) != 0)
        overlapped = true;
      {
        std::lock_guard guard(mutex);
        order.push_back(i);
      }
      running.fetch_sub(1);
    }));
  }
  ASSERT_TRUE(waitUntil([&] { return queue.operationCount() == 0; }));
  EXPECT_FALSE(overlapped);
  std::vector<int> expected(50);
  for (int i = 0; i < 50; ++i)
    expected[static_cast<std::size_t>(i)] = i;
  EXPECT_EQ(order, expected);
}

TEST(ModuleQueue, AddLogsTheCountAfterAdding) {
  auto sink = CaptureLogSink::install();
  ModuleQueue queue(ModuleName::cdp);
  Gate gate;
  fill(queue, gate, 2);
  EXPECT_TRUE(
      sink->contains("New operation (1 of 100) added to the `vornsdk.module.cdp.tasks` queue."));
  EXPECT_TRUE(
      sink->contains("New operation (2 of 100) added to the `vornsdk.module.cdp.tasks` queue."));
  gate.open();
  ASSERT_TRUE(waitUntil([&] { return queue.operationCount() == 0; }));
}

TEST(ModuleQueue, HundredAndFirstCancelsTheBacklogAndIsDropped) {
  auto sink = CaptureLogSink::install();
  ModuleQueue queue(ModuleName::push);
  Gate gate;
  const auto held = fill(queue, gate, 100);
  EXPECT_EQ(queue.operationCount(), 100u);
  EXPECT_TRUE(
      sink->contains("New operation (100 of 100) added to the `vornsdk.module.push.tasks` queue."));

  auto dropped = std::make_shared<BlockOperation>([] {});
  queue.addOperation(dropped);
  EXPECT_EQ(sink->count("Failed adding operation to the `vornsdk.module.push.tasks` queue. "
                        "Buffer is full. Cancelling all operations."),
            1u);
  for (const auto& operation : held)
    EXPECT_TRUE(operation->isCancelled());
  EXPECT_FALSE(dropped->isCancelled());

  gate.open();
  ASSERT_TRUE(waitUntil([&] { return queue.operationCount() == 0; }));
  EXPECT_FALSE(dropped->isFinished());
}

TEST(ModuleQueues, MissingQueueHasNoCountAndRemovingItDoesNothing) {
  auto sink = CaptureLogSink::install();
  EXPECT_EQ(ModuleQueues::pendingOperationCount(ModuleName::cdp), std::nullopt);
  ModuleQueues::removeQueue(ModuleName::cdp);
  EXPECT_EQ(ModuleQueues::queue(ModuleName::cdp), nullptr);
  EXPECT_TRUE(sink->lines().empty());
}

TEST(ModuleQueues, AddCreatesTheQueueOnceAndRemoveCancels) {
  auto sink = CaptureLogSink::install();
  Gate gate;
  auto first = std::make_shared<BlockOperation>([&gate] { gate.pass(); });
  auto second = std::make_shared<BlockOperation>([] {});
  ModuleQueues::addOperation(first, ModuleName::push);
  const auto queue = ModuleQueues::queue(ModuleName::push);
  ASSERT_NE(queue, nullptr);
  // Held at the gate, `first` keeps `second` waiting, so both are still there to cancel.
  ASSERT_TRUE(waitUntil([&] { return first->isExecuting(); }));
  ModuleQueues::addOperation(second, ModuleName::push);
  EXPECT_EQ(ModuleQueues::queue(ModuleName::push), queue);
  EXPECT_EQ(ModuleQueues::pendingOperationCount(ModuleName::push), 2u);
  EXPECT_EQ(ModuleQueues::pendingOperationCount(ModuleName::cdp), std::nullopt);

  ModuleQueues::removeQueue(ModuleName::push);
  EXPECT_TRUE(sink->contains("Cancelling all operations in the vornsdk.module.push.tasks queue."));
  EXPECT_TRUE(first->isCancelled());
  EXPECT_TRUE(second->isCancelled());
  EXPECT_EQ(ModuleQueues::queue(ModuleName::push), nullptr);
  EXPECT_EQ(ModuleQueues::pendingOperationCount(ModuleName::push), std::nullopt);
  gate.open();
  ASSERT_TRUE(waitUntil([&] { return queue->operationCount() == 0; }));
}

TEST(ModuleQueues, InstalledFakeRecordsOperations) {
  auto fake = std::make_shared<testing::FakePendingOperations>(ModuleName::cdp);
  ModuleQueues::install(fake);
  auto operation = std::make_shared<BlockOperation>([] {});
  ModuleQueues::addOperation(operation, ModuleName::cdp);
  ASSERT_EQ(fake->operations().size(), 1u);
  EXPECT_EQ(fake->operations()[0], operation);
  ASSERT_TRUE(waitUntil([&] { return operation->isFinished(); }));
}

TEST(ModuleQueues, FakeDelayedOperationSleepsItsDelay) {
  testing::ScopedTimeScale compressed(0.01);
  auto operation = std::make_shared<testing::FakeDelayedOperation>(2);
  EXPECT_EQ(operation->delay, 2);
  const auto started = std::chrono::steady_clock::now();
  ModuleQueues::addOperation(operation, ModuleName::cdp);
  ASSERT_TRUE(waitUntil([&] { return operation->isFinished(); }));
  EXPECT_GE(std::chrono::steady_clock::now() - started, std::chrono::milliseconds(20));
}

TEST(ModuleQueues, ConcurrentAddsRemovesAndCountsStayConsistent) {
  std::atomic<int> ran{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      const ModuleName module = t % 2 == 0 ? ModuleName::cdp : ModuleName::push;
      for (int i = 0; i < 300; ++i) {
        ModuleQueues::addOperation(std::make_shared<BlockOperation>([&] { ran++; }), module);
        if (i % 50 == 0)
          ModuleQueues::removeQueue(module);
        (void)ModuleQueues::pendingOperationCount(module);
      }
    });
  }
  for (auto& thread : threads)
    thread.join();
  for (ModuleName module : kAllModuleNames) {
    ASSERT_TRUE(
        waitUntil([&] { return ModuleQueues::pendingOperationCount(module).value_or(0) == 0; }));
  }
  EXPECT_GT(ran.load(), 0);
}

}  // namespace
}  // namespace vorn

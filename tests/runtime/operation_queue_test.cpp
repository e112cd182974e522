#include "vorn/runtime/OperationQueue.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

#include "vorn/runtime/BlockOperation.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

TEST(OperationQueueTest, MaxOneRunsStrictlyInAddOrder) {
  OperationQueue queue;
  queue.setName("test.ordered");
  queue.setMaxConcurrentOperationCount(1);
  EXPECT_EQ(queue.name(), "test.ordered");
  EXPECT_EQ(queue.maxConcurrentOperationCount(), 1);
  std::mutex mutex;
  std::vector<int> order;
  std::atomic<int> inside{0};
  std::atomic<bool> overlapped{false};
  constexpr int kOperations = 200;
  for (int i = 0; i < kOperations; ++i) {
    queue.addOperation([&, i] {
      if (inside.fetch_add(1) != 0) {
        overlapped = true;
      }
      {
        std::lock_guard lock(mutex);
        order.push_back(i);
      }
      inside.fetch_sub(1);
    });
  }
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_FALSE(overlapped);
  std::lock_guard lock(mutex);
  ASSERT_EQ(order.size(), static_cast<std::size_t>(kOperations));
  for (int i = 0; i < kOperations; ++i) {
    EXPECT_EQ(order[i], i);
  }
}

TEST(OperationQueueTest, DefaultMaximumRunsOperationsSideBySide) {
  OperationQueue queue;
  EXPECT_EQ(queue.maxConcurrentOperationCount(),
            OperationQueue::kDefaultMaxConcurrentOperationCount);
  // Each operation waits for the other: only concurrent execution lets both finish.
  testing::Latch both(2);
  std::atomic<int> met{0};
  for (int i = 0; i < 2; ++i) {
    queue.addOperation([&] {
      both.countDown();
      if (both.wait()) {
        met.fetch_add(1);
      }
    });
  }
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(met.load(), 2);
}

// Operations are started one after another by as few pool tasks as possible; one that blocks
// must still never hold back those added after it, however many block at once.
TEST(OperationQueueTest, DefaultMaximumStartsEveryOperationWhileEarlierOnesBlock) {
  OperationQueue queue;
  constexpr int kOperations = 6;
  testing::Latch all(kOperations);
  std::atomic<int> met{0};
  for (int i = 0; i < kOperations; ++i) {
    queue.addOperation([&] {
      all.countDown();
      if (all.wait()) {
        met.fetch_add(1);
      }
    });
  }
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(met.load(), kOperations);
}

TEST(OperationQueueTest, CountsAndListsOperationsUntilTheyFinish) {
  OperationQueue queue;
  queue.setMaxConcurrentOperationCount(1);
  testing::Latch gate;
  testing::Latch started;
  auto blocker = std::make_shared<BlockOperation>([&] {
    started.countDown();
    EXPECT_TRUE(gate.wait());
  });
  auto second = std::make_shared<BlockOperation>([] {});
  queue.addOperation(blocker);
  queue.addOperation(second);
  queue.addOperation(second);  // a second add of the same operation is ignored
  ASSERT_TRUE(started.wait());
  EXPECT_EQ(queue.operationCount(), 2u);
  EXPECT_EQ(queue.operations(), (std::vector<std::shared_ptr<Operation>>{blocker, second}));
  gate.countDown();
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(queue.operationCount(), 0u);
  EXPECT_TRUE(second->isFinished());
}

TEST(OperationQueueTest, CancelAllStartsPendingOperationsWithoutTheirWork) {
  OperationQueue queue;
  queue.setMaxConcurrentOperationCount(1);
  testing::Latch gate;
  testing::Latch started;
  auto blocker = std::make_shared<BlockOperation>([&] {
    started.countDown();
    EXPECT_TRUE(gate.wait());
  });
  queue.addOperation(blocker);
  ASSERT_TRUE(started.wait());

  constexpr int kPending = 5;
  std::atomic<int> mainRuns{0};
  std::atomic<int> startedPending{0};
  testing::Latch completions(kPending);
  std::vector<std::shared_ptr<BlockOperation>> pending;
  for (int i = 0; i < kPending; ++i) {
    auto op = std::make_shared<BlockOperation>([&] { mainRuns.fetch_add(1); });
    op->addObserver([&](std::string_view key, bool isPrior) {
      if (key == "isFinished" && isPrior) {
        startedPending.fetch_add(1);
      }
    });
    op->setCompletionBlock([&] { completions.countDown(); });
    pending.push_back(op);
    queue.addOperation(op);
  }
  queue.cancelAllOperations();
  gate.countDown();
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(completions.wait());
  EXPECT_EQ(mainRuns.load(), 0);
  EXPECT_EQ(startedPending.load(), kPending);
  EXPECT_TRUE(blocker->isCancelled());
  for (const auto& op : pending) {
    EXPECT_TRUE(op->isCancelled());
    EXPECT_TRUE(op->isFinished());
  }
}

TEST(OperationQueueTest, CurrentIsTheQueueRunningTheOperation) {
  EXPECT_EQ(OperationQueue::current(), nullptr);
  OperationQueue queue;
  OperationQueue* seen = nullptr;
  queue.addOperation([&] { seen = OperationQueue::current(); });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(seen, &queue);
}

TEST(OperationQueueTest, ZeroMaximumHoldsOperationsBackUntilRaised) {
  OperationQueue queue;
  queue.setMaxConcurrentOperationCount(0);
  std::atomic<bool> ran{false};
  queue.addOperation([&] { ran = true; });
  EXPECT_EQ(queue.operationCount(), 1u);
  EXPECT_FALSE(ran);
  queue.setMaxConcurrentOperationCount(1);
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(ran);
}

TEST(OperationQueueTest, DestroyedQueueStillRunsItsOperations) {
  testing::Latch gate;
  testing::Latch done;
  {
    OperationQueue queue;
    queue.setMaxConcurrentOperationCount(1);
    queue.addOperation([&] { EXPECT_TRUE(gate.wait()); });
    queue.addOperation([&] { done.countDown(); });
  }
  gate.countDown();
  EXPECT_TRUE(done.wait());
}

// Announces its changes while holding its own lock and takes that lock to answer isReady()
// and isFinished(),
// as operations with guarded state do. A queue that asked other operations whether they are
// ready from inside such a notification would nest their locks in both orders (which
// ThreadSanitizer reports as a lock-order inversion, and which can deadlock).
class GuardedOperation : public BlockOperation {
 public:
  using BlockOperation::BlockOperation;
  void start() override {
    std::lock_guard lock(mutex_);
    BlockOperation::start();
  }
  bool isReady() const override {
    std::lock_guard lock(mutex_);
    return BlockOperation::isReady();
  }
  bool isFinished() const override {
    std::lock_guard lock(mutex_);
    return BlockOperation::isFinished();
  }

 private:
  mutable std::recursive_mutex mutex_;
};

TEST(OperationQueueTest, NotificationsUnderAnOperationsLockDoNotNestOtherOperationsLocks) {
  OperationQueue queue;
  std::atomic<int> ran{0};
  for (int round = 0; round < 50; ++round) {
    auto first = std::make_shared<GuardedOperation>([&] { ran.fetch_add(1); });
    auto second = std::make_shared<GuardedOperation>([&] { ran.fetch_add(1); });
    second->addDependency(first);
    queue.addOperation(second);
    queue.addOperation(first);
  }
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(ran.load(), 100);
}

// Several threads add, cancel and wait on shared queues at once, with dependencies crossing
// queues; meant to be run under ThreadSanitizer as much as to check the final state.
TEST(OperationQueueTest, StressAddCancelAndWaitFromManyThreads) {
  OperationQueue serial;
  serial.setMaxConcurrentOperationCount(1);
  OperationQueue wide;
  wide.setMaxConcurrentOperationCount(3);
  constexpr int kThreads = 4;
  constexpr int kPerThread = 300;
  std::atomic<int> completions{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      std::mt19937 random(static_cast<unsigned>(t));
      std::shared_ptr<Operation> previous;
      for (int i = 0; i < kPerThread; ++i) {
        auto op = std::make_shared<BlockOperation>([] {});
        op->setCompletionBlock([&] { completions.fetch_add(1); });
        if (previous && random() % 3 == 0) {
          op->addDependency(previous);
        }
        (random() % 2 == 0 ? serial : wide).addOperation(op);
        if (random() % 5 == 0) {
          op->cancel();
        }
        if (random() % 50 == 0) {
          wide.cancelAllOperations();
        }
        if (random() % 100 == 0) {
          serial.waitUntilAllOperationsAreFinished();
        }
        previous = op;
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  serial.waitUntilAllOperationsAreFinished();
  wide.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(serial.operationCount() + wide.operationCount(), 0u);
  EXPECT_TRUE(testing::waitUntil([&] { return completions.load() == kThreads * kPerThread; }));
}

}  // namespace
}  // namespace vorn

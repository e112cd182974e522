#include "vorn/runtime/Operation.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "vorn/runtime/BlockOperation.hpp"
#include "vorn/runtime/OperationQueue.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

// Collects "will:<key>" / "did:<key>" in the order the operation announced them.
class KeyRecorder {
 public:
  Operation::KeyObserver observer() {
    return [this](std::string_view key, bool isPrior) {
      std::lock_guard lock(mutex_);
      events_.push_back((isPrior ? "will:" : "did:") + std::string(key));
    };
  }
  std::vector<std::string> events() {
    std::lock_guard lock(mutex_);
    return events_;
  }

 private:
  std::mutex mutex_;
  std::vector<std::string> events_;
};

TEST(OperationTest, DefaultStartAnnouncesItsStatesInOrder) {
  auto op = std::make_shared<BlockOperation>([] {});
  KeyRecorder recorder;
  op->addObserver(recorder.observer());
  EXPECT_TRUE(op->isReady());
  op->start();
  EXPECT_TRUE(op->isFinished());
  EXPECT_FALSE(op->isExecuting());
  EXPECT_EQ(recorder.events(),
            (std::vector<std::string>{"will:isExecuting", "did:isExecuting", "will:isExecuting",
                                      "will:isFinished", "did:isFinished", "did:isExecuting"}));
}

// Past the few observers an announcement copies on the stack, the rest still hear every
// change, in order, and one removed in between hears no more.
TEST(OperationTest, ManyObserversAllHearEveryAnnouncement) {
  auto op = std::make_shared<BlockOperation>([] {});
  std::vector<std::unique_ptr<KeyRecorder>> recorders;
  std::vector<Operation::ObserverToken> tokens;
  for (int i = 0; i < 7; ++i) {
    recorders.push_back(std::make_unique<KeyRecorder>());
    tokens.push_back(op->addObserver(recorders.back()->observer()));
  }
  op->removeObserver(tokens[3]);
  op->start();
  const std::vector<std::string> all{"will:isExecuting", "did:isExecuting", "will:isExecuting",
                                     "will:isFinished",  "did:isFinished",  "did:isExecuting"};
  for (std::size_t i = 0; i < recorders.size(); ++i) {
    EXPECT_EQ(recorders[i]->events(), i == 3 ? std::vector<std::string>{} : all) << i;
  }
}

TEST(OperationTest, CancelledBeforeStartFinishesWithoutMainAndRunsCompletion) {
  std::atomic<bool> mainRan{false};
  auto op = std::make_shared<BlockOperation>([&] { mainRan = true; });
  testing::Latch completed;
  op->setCompletionBlock([&] { completed.countDown(); });
  KeyRecorder recorder;
  op->cancel();
  op->addObserver(recorder.observer());
  op->start();
  EXPECT_TRUE(completed.wait());
  EXPECT_FALSE(mainRan);
  EXPECT_TRUE(op->isFinished());
  EXPECT_EQ(recorder.events(), (std::vector<std::string>{"will:isFinished", "did:isFinished"}));
}

TEST(OperationTest, CompletionRunsOnceAfterFinishing) {
  auto op = std::make_shared<BlockOperation>([] {});
  std::atomic<int> runs{0};
  std::atomic<bool> finishedWhenRun{false};
  testing::Latch completed;
  op->setCompletionBlock([&, raw = op.get()] {
    finishedWhenRun = raw->isFinished();
    runs.fetch_add(1);
    completed.countDown();
  });
  op->start();
  op->start();
  ASSERT_TRUE(completed.wait());
  EXPECT_TRUE(finishedWhenRun);
  EXPECT_EQ(runs.load(), 1);
}

TEST(OperationTest, CancelMakesAWaitingOperationReady) {
  auto dependency = std::make_shared<BlockOperation>([] {});
  auto op = std::make_shared<BlockOperation>([] {});
  op->addDependency(dependency);
  EXPECT_FALSE(op->isReady());
  KeyRecorder recorder;
  op->addObserver(recorder.observer());
  op->cancel();
  EXPECT_TRUE(op->isReady());
  EXPECT_EQ(recorder.events(), (std::vector<std::string>{"will:isCancelled", "did:isCancelled",
                                                         "will:isReady", "did:isReady"}));
}

TEST(OperationTest, FinishingDependencyAnnouncesReadiness) {
  auto dependency = std::make_shared<BlockOperation>([] {});
  auto op = std::make_shared<BlockOperation>([] {});
  op->addDependency(dependency);
  ASSERT_EQ(op->dependencies().size(), 1u);
  std::atomic<bool> readyAnnounced{false};
  op->addObserver([&, raw = op.get()](std::string_view key, bool isPrior) {
    if (key == "isReady" && !isPrior && raw->isReady()) {
      readyAnnounced = true;
    }
  });
  dependency->start();
  EXPECT_TRUE(readyAnnounced);
  op->removeDependency(dependency);
  EXPECT_TRUE(op->dependencies().empty());
}

// Finishes on a thread of its own, long after start() has returned, the way an operation
// waiting for a network reply does.
class LaterOperation : public Operation {
 public:
  void start() override {
    willChangeValueForKey("isExecuting");
    executing_ = true;
    didChangeValueForKey("isExecuting");
    finisher_ = std::thread([this] {
      EXPECT_TRUE(release.wait());
      willChangeValueForKey("isExecuting");
      willChangeValueForKey("isFinished");
      executing_ = false;
      finished_ = true;
      didChangeValueForKey("isFinished");
      didChangeValueForKey("isExecuting");
    });
  }
  bool isExecuting() const override { return executing_; }
  bool isFinished() const override { return finished_; }
  bool isAsynchronous() const override { return true; }
  // Called by the test before it lets go of the operation, so that the last reference is
  // never dropped on the finisher thread itself.
  void join() { finisher_.join(); }

  testing::Latch release;

 private:
  std::atomic<bool> executing_{false};
  std::atomic<bool> finished_{false};
  std::thread finisher_;
};

TEST(OperationTest, AsynchronousOperationFinishesFromAnotherThread) {
  OperationQueue queue;
  queue.setMaxConcurrentOperationCount(1);
  auto later = std::make_shared<LaterOperation>();
  testing::Latch nextRan;
  std::atomic<bool> laterFinishedFirst{false};
  queue.addOperation(later);
  queue.addOperation([&] {
    laterFinishedFirst = later->isFinished();
    nextRan.countDown();
  });
  ASSERT_TRUE(testing::waitUntil([&] { return later->isExecuting(); }));
  EXPECT_TRUE(later->isConcurrent());
  EXPECT_EQ(queue.operationCount(), 2u);
  later->release.countDown();
  ASSERT_TRUE(nextRan.wait());
  EXPECT_TRUE(laterFinishedFirst);
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(queue.operationCount(), 0u);
  later->join();
}

TEST(OperationTest, DependencyOnAnotherQueueHoldsTheOperationBack) {
  OperationQueue first;
  OperationQueue second;
  testing::Latch gate;
  std::atomic<bool> dependencyDone{false};
  std::atomic<bool> orderKept{false};
  auto dependency = std::make_shared<BlockOperation>([&] {
    EXPECT_TRUE(gate.wait());
    dependencyDone = true;
  });
  auto dependent = std::make_shared<BlockOperation>([&] { orderKept = dependencyDone.load(); });
  dependent->addDependency(dependency);
  second.addOperation(dependent);
  first.addOperation(dependency);
  EXPECT_FALSE(dependent->isReady());
  gate.countDown();
  second.waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(orderKept);
  EXPECT_TRUE(dependent->isFinished());
}

}  // namespace
}  // namespace vorn

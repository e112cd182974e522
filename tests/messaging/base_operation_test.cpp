#include "vorn/messaging/BaseOperation.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "vorn/runtime/Durations.hpp"
#include "vorn/runtime/OperationQueue.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/TimeScale.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using testing::CaptureLogSink;
using testing::waitUntil;

constexpr std::string_view kInvalid = "Operation transition state invalid. State not updated";
constexpr std::string_view kLateDependency =
    "Cannot add dependency when operation already started. Dependency dropped.";

// Runs until told to finish; records whether its body ran.
class ManualOperation : public BaseOperation {
 public:
  using BaseOperation::BaseOperation;
  void main() override { mainCalls++; }
  void complete() { finish(); }
  std::atomic<int> mainCalls{0};
};

// Records every key-value notification as "will:key" / "did:key".
std::shared_ptr<std::vector<std::string>> recordNotifications(Operation& operation) {
  auto seen = std::make_shared<std::vector<std::string>>();
  operation.addObserver([seen](std::string_view key, bool isPrior) {
    if (key == "isExecuting" || key == "isFinished") {
      seen->push_back((isPrior ? "will:" : "did:") + std::string(key));
    }
  });
  return seen;
}

TEST(BaseOperation, RunsThroughItsStatesAndFinishesInBaseMain) {
  auto operation = std::make_shared<BaseOperation>(BaseOperation::kNoTimeout);
  EXPECT_EQ(operation->state(), BaseOperation::State::inactive);
  auto seen = recordNotifications(*operation);
  operation->start();
  EXPECT_EQ(operation->state(), BaseOperation::State::finished);
  EXPECT_TRUE(operation->isFinished());
  EXPECT_FALSE(operation->isExecuting());
  EXPECT_FALSE(operation->operationTimedOut());
  EXPECT_FALSE(operation->isConcurrent());
  EXPECT_EQ(*seen,
            (std::vector<std::string>{"will:isExecuting", "did:isExecuting", "will:isExecuting",
                                      "will:isFinished", "did:isFinished", "did:isExecuting"}));
}

TEST(BaseOperation, SecondStartIsLoggedAndChangesNothing) {
  auto sink = CaptureLogSink::install();
  auto operation = std::make_shared<ManualOperation>(BaseOperation::kNoTimeout);
  operation->start();
  EXPECT_EQ(sink->count(kInvalid), 0u);
  operation->start();
  EXPECT_EQ(sink->count(kInvalid), 1u);
  EXPECT_EQ(operation->mainCalls, 1);
  EXPECT_EQ(operation->state(), BaseOperation::State::executing);
  const auto line = sink->find(kInvalid);
  EXPECT_EQ(line->level, LogLevel::debug);
  EXPECT_EQ(line->category, LoggerCategory::sdk);
  EXPECT_EQ(line->subsystem, "VORNSdk");
}

TEST(BaseOperation, FinishingTwiceIsAnInvalidTransition) {
  auto sink = CaptureLogSink::install();
  auto operation = std::make_shared<ManualOperation>(BaseOperation::kNoTimeout);
  operation->start();
  operation->complete();
  operation->complete();
  EXPECT_EQ(sink->count(kInvalid), 1u);
  EXPECT_EQ(operation->state(), BaseOperation::State::finished);
}

TEST(BaseOperation, DependencyAfterStartIsDropped) {
  auto sink = CaptureLogSink::install();
  auto operation = std::make_shared<ManualOperation>(BaseOperation::kNoTimeout);
  auto before = std::make_shared<BaseOperation>(BaseOperation::kNoTimeout);
  operation->addDependency(before);
  EXPECT_EQ(operation->dependencies().size(), 1u);
  EXPECT_FALSE(sink->contains(kLateDependency));

  before->start();
  operation->start();
  operation->addDependency(std::make_shared<BaseOperation>(BaseOperation::kNoTimeout));
  EXPECT_EQ(operation->dependencies().size(), 1u);
  EXPECT_EQ(sink->count(kLateDependency), 1u);
}

TEST(BaseOperation, CancelledBeforeStartStillPassesThroughExecuting) {
  auto operation = std::make_shared<ManualOperation>(1.0);
  auto seen = recordNotifications(*operation);
  operation->cancel();
  operation->start();
  EXPECT_EQ(operation->mainCalls, 0);
  EXPECT_TRUE(operation->isFinished());
  EXPECT_FALSE(operation->operationTimedOut());
  EXPECT_EQ(*seen,
            (std::vector<std::string>{"will:isExecuting", "did:isExecuting", "will:isExecuting",
                                      "will:isFinished", "did:isFinished", "did:isExecuting"}));
}

// Records the moment the operation was cancelled, which for a time-out is when it fired.
std::shared_ptr<std::atomic<std::chrono::steady_clock::time_point>> recordCancellation(
    Operation& operation) {
  auto at = std::make_shared<std::atomic<std::chrono::steady_clock::time_point>>();
  operation.addObserver([at](std::string_view key, bool isPrior) {
    if (key == "isCancelled" && isPrior) {
      at->store(std::chrono::steady_clock::now());
    }
  });
  return at;
}

TEST(BaseOperation, TimeOutIsTruncatedToWholeSeconds) {
  testing::ScopedTimeScale compressed(0.2);
  auto fractional = std::make_shared<ManualOperation>(2.7);
  auto whole = std::make_shared<ManualOperation>(2.0);
  const auto fractionalFired = recordCancellation(*fractional);
  const auto wholeFired = recordCancellation(*whole);
  const auto started = std::chrono::steady_clock::now();
  fractional->start();
  whole->start();
  ASSERT_TRUE(waitUntil([&] { return fractional->isFinished() && whole->isFinished(); }));
  EXPECT_TRUE(fractional->operationTimedOut());
  EXPECT_TRUE(fractional->isCancelled());
  EXPECT_TRUE(whole->operationTimedOut());
  // Never before its whole seconds have passed...
  EXPECT_GE(fractionalFired->load() - started, durations::scaled(2s));
  // ... and together with the 2 s time-out armed just after it, rather than the dropped
  // 0.7 s later. Comparing the two firings instead of reading a wall-clock bound leaves out
  // whatever delays the timer as a whole on a busy machine.
  EXPECT_LT(fractionalFired->load() - wholeFired->load(), durations::scaled(350ms));
}

TEST(BaseOperation, SubSecondTimeOutFiresAtOnce) {
  auto operation = std::make_shared<ManualOperation>(0.9);
  operation->start();
  ASSERT_TRUE(waitUntil([&] { return operation->isFinished(); }, 5s));
  EXPECT_TRUE(operation->operationTimedOut());
}

TEST(BaseOperation, LateFinishAfterTimeOutIsSilent) {
  auto sink = CaptureLogSink::install();
  auto operation = std::make_shared<ManualOperation>(0.0);
  operation->start();
  ASSERT_TRUE(waitUntil([&] { return operation->isFinished(); }, 5s));
  operation->complete();
  EXPECT_FALSE(sink->contains(kInvalid));
}

TEST(BaseOperation, LargestDoubleNeverArmsATimer) {
  // Compress every timer so that any armed one, even a century long, fires within moments.
  testing::ScopedTimeScale compressed(1e-12);
  auto endless = std::make_shared<ManualOperation>(BaseOperation::kNoTimeout);
  auto huge = std::make_shared<ManualOperation>(1e300);
  endless->start();
  huge->start();
  ASSERT_TRUE(waitUntil([&] { return huge->isFinished(); }, 5s));
  EXPECT_TRUE(huge->operationTimedOut());
  EXPECT_TRUE(endless->isExecuting());
  EXPECT_FALSE(endless->operationTimedOut());
  endless->complete();
}

TEST(BaseOperation, QueueWaitsForAnAsynchronousFinish) {
  OperationQueue queue;
  queue.setMaxConcurrentOperationCount(1);
  auto first = std::make_shared<ManualOperation>(BaseOperation::kNoTimeout);
  auto second = std::make_shared<ManualOperation>(BaseOperation::kNoTimeout);
  queue.addOperation(first);
  queue.addOperation(second);
  ASSERT_TRUE(waitUntil([&] { return first->mainCalls == 1; }));
  EXPECT_EQ(second->state(), BaseOperation::State::inactive);
  std::thread([first] { first->complete(); }).join();
  ASSERT_TRUE(waitUntil([&] { return second->mainCalls == 1; }));
  second->complete();
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(queue.operationCount(), 0u);
}

TEST(BaseOperation, TimeOutReleasesTheQueue) {
  testing::ScopedTimeScale compressed(0.001);
  OperationQueue queue;
  queue.setMaxConcurrentOperationCount(1);
  auto stuck = std::make_shared<ManualOperation>(15.0);
  auto next = std::make_shared<BaseOperation>(BaseOperation::kNoTimeout);
  queue.addOperation(stuck);
  queue.addOperation(next);
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(stuck->operationTimedOut());
  EXPECT_TRUE(next->isFinished());
}

}  // namespace
}  // namespace vorn

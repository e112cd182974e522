#include "vorn/runtime/DelayedWork.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>

#include "vorn/runtime/DispatchQueue.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using testing::Latch;

TEST(DelayedWorkTest, RunsOnceItsDelayHasPassed) {
  Latch ran;
  const auto scheduled = std::chrono::steady_clock::now();
  std::chrono::steady_clock::time_point ranAt;
  DelayedWork::schedule(20ms, [&] {
    ranAt = std::chrono::steady_clock::now();
    ran.countDown();
  });
  ASSERT_TRUE(ran.wait());
  EXPECT_GE(ranAt - scheduled, 20ms);
}

TEST(DelayedWorkTest, RunsOnTheQueueItIsGiven) {
  DispatchQueue queue("delayed-work-test");
  Latch ran;
  std::atomic<DispatchQueue*> ranOn{nullptr};
  DelayedWork::schedule(5ms, queue, [&] {
    ranOn = DispatchQueue::current();
    ran.countDown();
  });
  ASSERT_TRUE(ran.wait());
  EXPECT_EQ(ranOn.load(), &queue);
}

TEST(DelayedWorkTest, ACancelledClosureNeverRunsAndWhatItCapturedGoesAtOnce) {
  auto captured = std::make_shared<int>(0);
  const std::weak_ptr<int> watch = captured;
  std::atomic<bool> ran{false};
  DelayedWork work = DelayedWork::schedule(30ms, [&ran, captured] { ran = true; });
  captured.reset();
  work.cancel();
  EXPECT_TRUE(watch.expired());
  // Work due later than the cancelled closure has run: the timer went past its deadline.
  Latch later;
  DelayedWork::schedule(60ms, [&] { later.countDown(); });
  ASSERT_TRUE(later.wait());
  EXPECT_FALSE(ran);
}

TEST(DelayedWorkTest, CancellingTheEarliestKeepsTheNextOnTime) {
  std::atomic<bool> cancelledRan{false};
  Latch next;
  DelayedWork first = DelayedWork::schedule(10ms, [&] { cancelledRan = true; });
  DelayedWork::schedule(40ms, [&] { next.countDown(); });
  first.cancel();
  ASSERT_TRUE(next.wait());
  EXPECT_FALSE(cancelledRan);
}

TEST(DelayedWorkTest, CancelAfterItRanOrTwiceOrOnNothingLeavesOtherWorkAlone) {
  Latch ran;
  DelayedWork work = DelayedWork::schedule(1ms, [&] { ran.countDown(); });
  ASSERT_TRUE(ran.wait());
  Latch other;
  DelayedWork::schedule(20ms, [&] { other.countDown(); });
  work.cancel();
  work.cancel();
  DelayedWork().cancel();
  EXPECT_TRUE(other.wait());
}

TEST(DelayedWorkTest, NoDelayRunsAtOnceAndAnEmptyClosureSchedulesNothing) {
  Latch ran;
  DelayedWork::schedule(0ns, [&] { ran.countDown(); }).cancel();
  EXPECT_TRUE(ran.wait());
  DelayedWork::schedule(1ms, nullptr).cancel();
}

}  // namespace
}  // namespace vorn

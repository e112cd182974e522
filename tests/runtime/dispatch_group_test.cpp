#include "vorn/runtime/DispatchGroup.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>

#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;

TEST(DispatchGroupTest, WaitSucceedsOnceEveryEnterIsLeft) {
  DispatchGroup group;
  std::atomic<int> done{0};
  for (int i = 0; i < 8; ++i) {
    group.enter();
    DispatchQueue::global().async([&] {
      done.fetch_add(1);
      group.leave();
    });
  }
  EXPECT_EQ(group.wait(testing::kDeadline), DispatchGroupWaitResult::success);
  EXPECT_EQ(done.load(), 8);
}

TEST(DispatchGroupTest, WaitTimesOutWhenNeverLeft) {
  DispatchGroup group;
  group.enter();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(group.wait(50ms), DispatchGroupWaitResult::timedOut);
  EXPECT_GE(std::chrono::steady_clock::now() - start, 50ms);
  group.leave();
  EXPECT_EQ(group.wait(0ms), DispatchGroupWaitResult::success);
}

TEST(DispatchGroupTest, UnbalancedLeaveIsIgnored) {
  DispatchGroup group;
  group.leave();
  group.enter();
  EXPECT_EQ(group.wait(10ms), DispatchGroupWaitResult::timedOut);
}

TEST(DispatchGroupTest, NotifyRunsOnTheQueueAfterTheLastLeave) {
  DispatchGroup group;
  DispatchQueue queue("test.notify");
  std::atomic<bool> left{false};
  testing::Latch notified;
  DispatchQueue* ranOn = nullptr;
  group.enter();
  group.notify(queue, [&] {
    EXPECT_TRUE(left.load());
    ranOn = DispatchQueue::current();
    notified.countDown();
  });
  left = true;
  group.leave();
  ASSERT_TRUE(notified.wait());
  EXPECT_EQ(ranOn, &queue);
}

}  // namespace
}  // namespace vorn

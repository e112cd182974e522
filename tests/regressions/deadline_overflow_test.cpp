// "Wait forever" spelled as the largest duration must wait forever, not wrap around to a
// deadline long past.
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include "ThreadStats.hpp"
#include "vorn/messaging/BaseOperation.hpp"
#include "vorn/runtime/DispatchGroup.hpp"
#include "vorn/runtime/DispatchQueue.hpp"
#include "vorn/runtime/Durations.hpp"
#include "vorn/testing/TimeScale.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;
using testing::waitUntil;

constexpr auto kForever = nanoseconds::max();

// Returns once the delay timer has handed over everything due within the next 10 ms.
void letTheTimerPass() {
  DispatchQueue queue("test.deadline.probe");
  auto passed = std::make_shared<std::atomic<bool>>(false);
  queue.asyncAfter(10ms, [passed] { *passed = true; });
  ASSERT_TRUE(waitUntil([&] { return passed->load(); }));
}

TEST(DeadlineOverflow, GroupWaitWithTheLargestTimeOutWaitsForTheLastLeave) {
  DispatchGroup group;
  group.enter();
  std::atomic<pid_t> waiterId{0};
  std::atomic<int> result{-1};
  std::thread waiter([&] {
    waiterId = gettid();
    result = static_cast<int>(group.wait(kForever));
  });
  // Leave once the waiter is asleep in wait(), or has (wrongly) returned from it already.
  ASSERT_TRUE(waitUntil([&] {
    return waiterId.load() != 0 && (result.load() != -1 || test::isBlocked(waiterId.load()));
  }));
  group.leave();
  waiter.join();
  EXPECT_EQ(result.load(), static_cast<int>(DispatchGroupWaitResult::success));
}

TEST(DeadlineOverflow, AsyncAfterTheLargestDelayNeverRuns) {
  DispatchQueue queue("test.deadline.after");
  auto ran = std::make_shared<std::atomic<bool>>(false);
  queue.asyncAfter(kForever, [ran] { *ran = true; });
  // Posted to the same queue later and due sooner: it must run first.
  auto seenBeforeProbe = std::make_shared<std::atomic<bool>>(true);
  auto probed = std::make_shared<std::atomic<bool>>(false);
  queue.asyncAfter(1ms, [ran, seenBeforeProbe, probed] {
    *seenBeforeProbe = ran->load();
    *probed = true;
  });
  ASSERT_TRUE(waitUntil([&] { return probed->load(); }));
  EXPECT_FALSE(seenBeforeProbe->load());
}

TEST(DeadlineOverflow, ScaledDurationsSaturate) {
  EXPECT_EQ(durations::scaled(kForever), kForever);
  testing::ScopedTimeScale stretched(4.0);
  EXPECT_EQ(durations::scaled(kForever / 2), kForever);
  EXPECT_EQ(durations::scaled(nanoseconds::min()), nanoseconds::min());
}

// Stays executing until the test is done with it.
class EndlessOperation : public BaseOperation {
 public:
  EndlessOperation() : BaseOperation(1e300) {}
  void main() override {}
};

TEST(DeadlineOverflow, OperationTimeOutBeyondTheClockNeverFires) {
  // A century-long time-out stretched a thousandfold lies far beyond what the clock holds.
  testing::ScopedTimeScale stretched(1000.0);
  auto operation = std::make_shared<EndlessOperation>();
  operation->start();
  letTheTimerPass();
  EXPECT_TRUE(operation->isExecuting());
  EXPECT_FALSE(operation->operationTimedOut());
}

}  // namespace
}  // namespace vorn

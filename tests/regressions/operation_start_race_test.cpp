// Two threads calling start() on the same operation at the same moment: exactly one of them
// runs main(), and the other one does what any second start() does.
#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <memory>
#include <thread>

#include "vorn/messaging/BaseOperation.hpp"
#include "vorn/runtime/BlockOperation.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;

constexpr int kTrials = 300;
constexpr std::string_view kInvalid = "Operation transition state invalid. State not updated";

// Calls start() from two threads released together.
void startTwiceAtOnce(Operation& operation) {
  std::latch go(2);
  auto starter = [&] {
    go.arrive_and_wait();
    operation.start();
  };
  std::thread first(starter);
  std::thread second(starter);
  first.join();
  second.join();
}

class CountingOperation : public BaseOperation {
 public:
  CountingOperation() : BaseOperation(kNoTimeout) {}
  void main() override {
    mainCalls.fetch_add(1);
    finish();
  }
  std::atomic<int> mainCalls{0};
};

TEST(OperationStartRace, ConcurrentStartsRunMainOnce) {
  auto sink = CaptureLogSink::install();
  int repeated = 0;
  for (int trial = 0; trial < kTrials; ++trial) {
    std::atomic<int> mainCalls{0};
    auto operation = std::make_shared<BlockOperation>([&] { mainCalls.fetch_add(1); });
    // Observers run between deciding to start and being marked executing; an observer that
    // gives up the core, as any that takes a lock may, lets the other caller catch up.
    operation->addObserver([](std::string_view, bool) { std::this_thread::yield(); });
    startTwiceAtOnce(*operation);
    repeated += mainCalls.load() != 1 ? 1 : 0;
    EXPECT_TRUE(operation->isFinished());
  }
  EXPECT_EQ(repeated, 0) << "main() did not run exactly once in " << repeated << " trials";
  EXPECT_TRUE(sink->lines().empty()) << "a second start() of a plain operation is silent";
}

TEST(OperationStartRace, ConcurrentStartsOfABaseOperationRunMainOnceAndLogTheOther) {
  auto sink = CaptureLogSink::install();
  int repeated = 0;
  for (int trial = 0; trial < kTrials; ++trial) {
    auto operation = std::make_shared<CountingOperation>();
    startTwiceAtOnce(*operation);
    repeated += operation->mainCalls.load() != 1 ? 1 : 0;
    EXPECT_TRUE(operation->isFinished());
  }
  EXPECT_EQ(repeated, 0) << "main() did not run exactly once in " << repeated << " trials";
  EXPECT_EQ(sink->count(kInvalid), static_cast<std::size_t>(kTrials));
}

}  // namespace
}  // namespace vorn

// A closure's captures are destroyed on the worker that ran it. A capture whose destructor
// posts work and waits for it must see that work run on one of the pool's idle workers.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>

#include "vorn/runtime/DispatchQueue.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using testing::waitUntil;

// Posts a closure to the global queue from its destructor and waits for it to run.
class FlushesOnDestruction {
 public:
  explicit FlushesOnDestruction(std::atomic<int>& outcome) : outcome_(outcome) {}
  ~FlushesOnDestruction() {
    auto ran = std::make_shared<std::atomic<bool>>(false);
    DispatchQueue::global().async([ran] { *ran = true; });
    outcome_ = waitUntil([&] { return ran->load(); }, 5s) ? 1 : -1;
  }
  FlushesOnDestruction(const FlushesOnDestruction&) = delete;
  FlushesOnDestruction& operator=(const FlushesOnDestruction&) = delete;

 private:
  std::atomic<int>& outcome_;
};

// Starts two workers and lets both go idle, so that later work has an idle worker to go to.
void warmUpTwoWorkers() {
  std::atomic<int> arrived{0};
  std::atomic<int> left{0};
  for (int i = 0; i < 2; ++i) {
    DispatchQueue::global().async([&] {
      arrived.fetch_add(1);
      waitUntil([&] { return arrived.load() == 2; }, 5s);
      left.fetch_add(1);
    });
  }
  ASSERT_TRUE(waitUntil([&] { return left.load() == 2; }));
}

TEST(TaskCaptureDestruction, WorkPostedFromACaptureDestructorRunsOnAnIdleWorker) {
  warmUpTwoWorkers();
  std::atomic<int> outcome{0};
  // The closure holds the only reference, so the destructor runs on the worker.
  DispatchQueue::global().async([capture = std::make_shared<FlushesOnDestruction>(outcome)] {});
  ASSERT_TRUE(waitUntil([&] { return outcome.load() != 0; }));
  EXPECT_EQ(outcome.load(), 1) << "the posted work never ran while the destructor waited";
}

}  // namespace
}  // namespace vorn

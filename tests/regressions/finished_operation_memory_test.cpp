// An operation's time-out must not keep it in memory once it has finished: an app that runs
// many short operations with long time-outs would otherwise grow until the first one expires.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <new>

#include "vorn/messaging/BaseOperation.hpp"
#include "vorn/runtime/OperationQueue.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using testing::waitUntil;

constexpr double kHour = 3600.0;

// Counts the blocks it has handed out and not yet taken back. With allocate_shared, the
// operation and its control block are one block, which lives as long as any shared or weak
// reference does.
template <class T>
struct CountingAllocator {
  using value_type = T;
  explicit CountingAllocator(std::atomic<int>& counter) : live(&counter) {}
  template <class U>
  CountingAllocator(const CountingAllocator<U>& other) : live(other.live) {}

  T* allocate(std::size_t n) {
    live->fetch_add(1);
    return static_cast<T*>(::operator new(n * sizeof(T)));
  }
  void deallocate(T* p, std::size_t) {
    ::operator delete(p);
    live->fetch_sub(1);
  }
  template <class U>
  bool operator==(const CountingAllocator<U>& other) const {
    return live == other.live;
  }

  std::atomic<int>* live;
};

class ManualOperation : public BaseOperation {
 public:
  using BaseOperation::BaseOperation;
  void main() override {}
  void complete() { finish(); }
};

TEST(FinishedOperationMemory, FinishedOperationIsReleasedBeforeItsTimeOut) {
  std::atomic<int> live{0};
  auto operation =
      std::allocate_shared<ManualOperation>(CountingAllocator<ManualOperation>(live), kHour);
  operation->start();
  operation->complete();
  std::weak_ptr<ManualOperation> weak = operation;
  operation.reset();
  EXPECT_TRUE(weak.expired());
  weak.reset();  // a weak reference holds the block too
  EXPECT_TRUE(waitUntil([&] { return live.load() == 0; }, 2s))
      << "the armed time-out still holds the finished operation's memory";
}

TEST(FinishedOperationMemory, QueuedOperationsDoNotAccumulate) {
  constexpr int kOperations = 1000;
  std::atomic<int> live{0};
  OperationQueue queue;
  for (int i = 0; i < kOperations; ++i) {
    // BaseOperation's own main() finishes at once.
    queue.addOperation(
        std::allocate_shared<BaseOperation>(CountingAllocator<BaseOperation>(live), kHour));
  }
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(waitUntil([&] { return live.load() == 0; }, 2s))
      << live.load() << " finished operations are still in memory";
}

}  // namespace
}  // namespace vorn

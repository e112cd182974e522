#include "vorn/runtime/DispatchQueue.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "Waiting.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;

TEST(DispatchQueueTest, KeepsEachProducersOrderAndNeverOverlaps) {
  constexpr int kProducers = 4;
  constexpr int kPerProducer = 2000;
  DispatchQueue queue("test.serial");
  std::vector<int> lastSeen(kProducers, -1);  // touched only on `queue`
  std::atomic<int> inside{0};
  std::atomic<bool> overlapped{false};
  std::atomic<bool> reordered{false};
  test::Latch done(kProducers * kPerProducer);
  std::vector<std::thread> producers;
  for (int p = 0; p < kProducers; ++p) {
    producers.emplace_back([&, p] {
      for (int i = 0; i < kPerProducer; ++i) {
        queue.async([&, p, i] {
          if (inside.fetch_add(1) != 0) {
            overlapped = true;
          }
          if (lastSeen[p] != i - 1) {
            reordered = true;
          }
          lastSeen[p] = i;
          inside.fetch_sub(1);
          done.countDown();
        });
      }
    });
  }
  for (auto& t : producers) {
    t.join();
  }
  ASSERT_TRUE(done.wait());
  EXPECT_FALSE(overlapped);
  EXPECT_FALSE(reordered);
}

TEST(DispatchQueueTest, SyncRunsOnCallerAfterEarlierWork) {
  DispatchQueue queue("test.sync");
  test::Latch release;
  std::vector<int> order;  // touched only on `queue`
  queue.async([&] {
    EXPECT_TRUE(release.wait());
    order.push_back(1);
  });
  queue.async([&] { order.push_back(2); });
  std::thread releaser([&] { release.countDown(); });
  const auto caller = std::this_thread::get_id();
  std::thread::id ranOn;
  queue.sync([&] {
    ranOn = std::this_thread::get_id();
    order.push_back(3);
  });
  releaser.join();
  EXPECT_EQ(ranOn, caller);
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST(DispatchQueueTest, SyncFromInsideTheQueueRunsInline) {
  DispatchQueue queue("test.reentrant");
  test::Latch done;
  bool innerRan = false;
  queue.async([&] {
    queue.sync([&] { queue.sync([&] { innerRan = true; }); });
    done.countDown();
  });
  ASSERT_TRUE(done.wait());
  EXPECT_TRUE(innerRan);
}

TEST(DispatchQueueTest, SyncReturnsTheValueAndCurrentNamesTheQueue) {
  DispatchQueue queue("test.current");
  EXPECT_EQ(DispatchQueue::current(), nullptr);
  EXPECT_EQ(queue.sync([&] { return DispatchQueue::current(); }), &queue);
  test::Latch done;
  DispatchQueue* seen = nullptr;
  queue.async([&] {
    seen = DispatchQueue::current();
    done.countDown();
  });
  ASSERT_TRUE(done.wait());
  EXPECT_EQ(seen, &queue);
  EXPECT_EQ(queue.label(), "test.current");
}

TEST(DispatchQueueTest, SyncReleasesTheQueueWhenTheWorkThrows) {
  DispatchQueue queue("test.throwing-sync");
  EXPECT_THROW(queue.sync([] { throw std::runtime_error("boom"); }), std::runtime_error);
  EXPECT_EQ(queue.sync([] { return 7; }), 7);
}

TEST(DispatchQueueTest, ThrowingAsyncWorkDoesNotStopTheQueue) {
  DispatchQueue queue("test.throwing-async");
  test::Latch done;
  queue.async([] { throw std::runtime_error("boom"); });
  queue.async([&] { done.countDown(); });
  EXPECT_TRUE(done.wait());
}

TEST(DispatchQueueTest, AsyncAfterRunsInDeadlineOrderAndNotBefore) {
  DispatchQueue queue("test.after");
  std::mutex mutex;
  std::vector<std::pair<int, std::chrono::steady_clock::time_point>> ran;
  test::Latch done(3);
  const auto start = std::chrono::steady_clock::now();
  auto record = [&](int id) {
    return [&, id] {
      {
        std::lock_guard lock(mutex);
        ran.emplace_back(id, std::chrono::steady_clock::now());
      }
      done.countDown();
    };
  };
  queue.asyncAfter(60ms, record(3));
  queue.asyncAfter(20ms, record(1));
  queue.asyncAfter(40ms, record(2));
  ASSERT_TRUE(done.wait());
  std::lock_guard lock(mutex);
  ASSERT_EQ(ran.size(), 3u);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(ran[i].first, i + 1);
    EXPECT_GE(ran[i].second - start, (i + 1) * 20ms);
  }
}

TEST(DispatchQueueTest, PoolGrowsPastBlockedWorkers) {
  constexpr int kBlocked = 12;  // several times the base pool on any test machine
  test::Latch allBlocked(kBlocked);
  test::Latch release;
  test::Latch releasedAll(kBlocked);
  for (int i = 0; i < kBlocked; ++i) {
    DispatchQueue::global().async([&] {
      allBlocked.countDown();
      EXPECT_TRUE(release.wait());
      releasedAll.countDown();
    });
  }
  ASSERT_TRUE(allBlocked.wait());
  DispatchQueue serial("test.after-blocked");
  test::Latch ran;
  serial.async([&] { ran.countDown(); });
  EXPECT_TRUE(ran.wait());
  release.countDown();
  EXPECT_TRUE(releasedAll.wait());
}

TEST(DispatchQueueTest, PendingWorkOutlivesTheQueue) {
  test::Latch gate;
  test::Latch done;
  std::atomic<int> count{0};
  {
    DispatchQueue queue("test.short-lived");
    queue.async([&] { EXPECT_TRUE(gate.wait()); });
    for (int i = 0; i < 100; ++i) {
      queue.async([&] {
        if (count.fetch_add(1) == 99) {
          done.countDown();
        }
      });
    }
  }
  gate.countDown();
  ASSERT_TRUE(done.wait());
  EXPECT_EQ(count.load(), 100);
}

}  // namespace
}  // namespace vorn

#include "vorn/runtime/DispatchQueue.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "vorn/testing/Wait.hpp"

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
  testing::Latch done(kProducers * kPerProducer);
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
  testing::Latch release;
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
  testing::Latch done;
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
  testing::Latch done;
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
  testing::Latch done;
  queue.async([] { throw std::runtime_error("boom"); });
  queue.async([&] { done.countDown(); });
  EXPECT_TRUE(done.wait());
}

TEST(DispatchQueueTest, AsyncAfterRunsInDeadlineOrderAndNotBefore) {
  using Clock = std::chrono::steady_clock;
  DispatchQueue queue("test.after");
  // Scheduled in reverse order. The exact deadline lies between now() before and after each
  // call, so the order is only checked between items whose deadline windows do not overlap
  // (a loaded machine may stall the scheduling thread between calls).
  const std::vector<std::chrono::milliseconds> delays{60ms, 40ms, 20ms};
  struct Window {
    Clock::time_point earliest;
    Clock::time_point latest;
  };
  std::vector<Window> windows(delays.size());
  std::vector<Clock::time_point> ranAt(delays.size());
  std::vector<std::size_t> order;  // touched only on `queue`
  testing::Latch done(static_cast<int>(delays.size()));
  for (std::size_t i = 0; i < delays.size(); ++i) {
    const auto before = Clock::now();
    queue.asyncAfter(delays[i], [&, i] {
      ranAt[i] = Clock::now();
      order.push_back(i);
      done.countDown();
    });
    windows[i] = {before + delays[i], Clock::now() + delays[i]};
  }
  ASSERT_TRUE(done.wait());
  std::vector<std::size_t> position(delays.size());
  for (std::size_t p = 0; p < order.size(); ++p) {
    position[order[p]] = p;
  }
  for (std::size_t i = 0; i < delays.size(); ++i) {
    EXPECT_GE(ranAt[i], windows[i].earliest) << "item " << i << " ran before its deadline";
    for (std::size_t k = 0; k < delays.size(); ++k) {
      if (windows[i].latest < windows[k].earliest) {
        EXPECT_LT(position[i], position[k]) << "item " << i << " is due before item " << k;
      }
    }
  }
}

TEST(DispatchQueueTest, PoolGrowsPastBlockedWorkers) {
  constexpr int kBlocked = 12;  // several times the base pool on any test machine
  testing::Latch allBlocked(kBlocked);
  testing::Latch release;
  testing::Latch releasedAll(kBlocked);
  for (int i = 0; i < kBlocked; ++i) {
    DispatchQueue::global().async([&] {
      allBlocked.countDown();
      EXPECT_TRUE(release.wait());
      releasedAll.countDown();
    });
  }
  ASSERT_TRUE(allBlocked.wait());
  DispatchQueue serial("test.after-blocked");
  testing::Latch ran;
  serial.async([&] { ran.countDown(); });
  EXPECT_TRUE(ran.wait());
  release.countDown();
  EXPECT_TRUE(releasedAll.wait());
}

// Post, wait for it to run, post again: the rhythm in which an idle worker either catches
// the next item while it is still watching for work or has parked and must be woken. Every
// round has to finish; a wake-up lost between the two would leave an item stranded.
TEST(DispatchQueueTest, PostAndWaitRoundTripsNeverStrandWork) {
  constexpr int kProducers = 3;
  constexpr int kRounds = 400;
  std::atomic<int> stranded{0};
  std::vector<std::thread> producers;
  for (int p = 0; p < kProducers; ++p) {
    producers.emplace_back([&, p] {
      DispatchQueue queue("test.round-trip." + std::to_string(p));
      for (int round = 0; round < kRounds; ++round) {
        testing::Latch ran;
        queue.async([&] { ran.countDown(); });
        if (!ran.wait()) {
          stranded.fetch_add(1);
          return;
        }
        // Every few rounds, pause long enough for the worker to give up watching and park.
        if (round % 4 == p % 4) {
          std::this_thread::sleep_for(200us);
        }
      }
    });
  }
  for (std::thread& producer : producers) {
    producer.join();
  }
  EXPECT_EQ(stranded.load(), 0);
}

TEST(DispatchQueueTest, PendingWorkOutlivesTheQueue) {
  testing::Latch gate;
  testing::Latch done;
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

// An idle process that has used the library must not be woken by it: no thread of the
// library runs while nothing is ready to run, even when a task stays blocked.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "ThreadStats.hpp"
#include "vorn/runtime/DispatchQueue.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using test::describe;
using test::libraryThreads;
using test::Switches;
using test::threadsBeforeTheLibrary;
using test::waitForTheThreadsToSettle;
using test::wakeupsBetween;
using testing::waitUntil;

// Blocks one pool worker until release() is called. The task shares the state, so that it
// may still be waking up when the test is over.
class BlockedTask {
 public:
  void post() {
    DispatchQueue::global().async([state = state_] {
      std::unique_lock lock(state->mutex);
      state->blocked = true;
      state->changed.wait(lock, [&] { return state->released; });
    });
  }
  bool isBlocked() {
    std::lock_guard lock(state_->mutex);
    return state_->blocked;
  }
  void release() {
    std::lock_guard lock(state_->mutex);
    state_->released = true;
    state_->changed.notify_all();
  }

 private:
  struct State {
    std::mutex mutex;
    std::condition_variable changed;
    bool blocked = false;   // guarded by mutex
    bool released = false;  // guarded by mutex
  };
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

// Some ordinary work, one item at a time: a serial queue, the global queue and a delay.
void runSomeWork() {
  DispatchQueue queue("test.idle.work");
  std::atomic<int> done{0};
  queue.async([&] { done.fetch_add(1); });
  ASSERT_TRUE(waitUntil([&] { return done.load() == 1; }));
  DispatchQueue::global().async([&] { done.fetch_add(1); });
  ASSERT_TRUE(waitUntil([&] { return done.load() == 2; }));
  queue.asyncAfter(1ms, [&] { done.fetch_add(1); });
  ASSERT_TRUE(waitUntil([&] { return done.load() == 3; }));
}

TEST(IdleWakeups, NoWakeupsWhileATaskStaysBlocked) {
  const Switches preexisting = threadsBeforeTheLibrary();
  BlockedTask blocked;
  blocked.post();
  ASSERT_TRUE(waitUntil([&] { return blocked.isBlocked(); }));
  runSomeWork();
  waitForTheThreadsToSettle(preexisting);

  // The measured interval itself: a fixed span of idleness is what is being checked.
  const Switches before = libraryThreads(preexisting);
  std::this_thread::sleep_for(2s);
  const Switches wakeups = wakeupsBetween(before, libraryThreads(preexisting));
  blocked.release();
  EXPECT_TRUE(wakeups.empty()) << "library threads woke up while idle:" << describe(wakeups);
}

}  // namespace
}  // namespace vorn

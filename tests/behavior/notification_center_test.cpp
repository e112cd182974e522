// The notification centre: delivery by name, removal by call or by the token's end, and
// callbacks that remove, post or register while a post runs.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "vorn/behavior/NotificationCenter.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

TEST(NotificationCenter, DeliversByNameInRegistrationOrder) {
  NotificationCenter center;
  std::vector<std::string> calls;
  auto first = center.addObserver("ready", [&](const Notification& note) {
    const auto* who = note.userInfo ? note.userInfo->at("who").get<std::string>() : nullptr;
    calls.push_back("first:" + (who ? *who : std::string("-")));
  });
  auto second =
      center.addObserver("ready", [&](const Notification&) { calls.push_back("second"); });
  auto other = center.addObserver("other", [&](const Notification&) { calls.push_back("other"); });
  center.post("ready", Dictionary{{"who", "app"}});
  center.post("ready");
  center.post("nobody listens");
  EXPECT_EQ(calls, (std::vector<std::string>{"first:app", "second", "first:-", "second"}));
}

TEST(NotificationCenter, RemovedOrDestroyedTokenIsNeverCalledAgain) {
  NotificationCenter center;
  int removedCalls = 0;
  int destroyedCalls = 0;
  auto removed = center.addObserver("tick", [&](const Notification&) { ++removedCalls; });
  {
    auto destroyed = center.addObserver("tick", [&](const Notification&) { ++destroyedCalls; });
    center.post("tick");
  }
  center.removeObserver(removed);
  EXPECT_FALSE(removed.active());
  center.removeObserver(removed);  // twice is harmless
  center.post("tick");
  EXPECT_EQ(removedCalls, 1);
  EXPECT_EQ(destroyedCalls, 1);
  EXPECT_EQ(center.observerCount("tick"), 0u);
}

TEST(NotificationCenter, MovedTokenKeepsTheRegistration) {
  NotificationCenter center;
  int calls = 0;
  ObserverToken kept;
  {
    auto token = center.addObserver("tick", [&](const Notification&) { ++calls; });
    kept = std::move(token);
  }
  center.post("tick");
  EXPECT_EQ(calls, 1);
  kept = center.addObserver("tick", [&](const Notification&) { calls += 10; });
  center.post("tick");
  EXPECT_EQ(calls, 11);  // assigning over a token removes the observer it held
}

TEST(NotificationCenter, TokenMayOutliveItsCentre) {
  ObserverToken token;
  {
    auto center = std::make_shared<NotificationCenter>();
    token = center->addObserver("tick", [](const Notification&) {});
  }
  token.reset();
  EXPECT_FALSE(token.active());
}

TEST(NotificationCenter, CallbackMayRemoveItselfAndPostAgain) {
  NotificationCenter center;
  int calls = 0;
  int echoes = 0;
  ObserverToken self;
  self = center.addObserver("tick", [&](const Notification&) {
    ++calls;
    self.reset();
    center.post("echo");
    center.post("tick");  // no longer registered: not called again
  });
  auto echo = center.addObserver("echo", [&](const Notification&) { ++echoes; });
  center.post("tick");
  center.post("tick");
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(echoes, 1);
}

TEST(NotificationCenter, CallbackMayRemoveAnotherObserverOfTheSamePost) {
  NotificationCenter center;
  int laterCalls = 0;
  ObserverToken later;
  auto first = center.addObserver("tick", [&](const Notification&) { later.reset(); });
  later = center.addObserver("tick", [&](const Notification&) { ++laterCalls; });
  center.post("tick");
  EXPECT_EQ(laterCalls, 0);
}

TEST(NotificationCenter, ObserverAddedDuringAPostIsCalledFromTheNextOne) {
  NotificationCenter center;
  int addedCalls = 0;
  std::vector<ObserverToken> added;
  auto adder = center.addObserver("tick", [&](const Notification&) {
    if (added.empty())
      added.push_back(center.addObserver("tick", [&](const Notification&) { ++addedCalls; }));
  });
  center.post("tick");
  EXPECT_EQ(addedCalls, 0);
  center.post("tick");
  EXPECT_EQ(addedCalls, 1);
}

TEST(NotificationCenter, RemovalWaitsForACallUnderWayOnAnotherThread) {
  NotificationCenter center;
  testing::Latch entered;
  std::atomic<bool> release{false};
  std::atomic<bool> finished{false};
  auto token = center.addObserver("slow", [&](const Notification&) {
    entered.countDown();
    while (!release.load())
      std::this_thread::yield();
    finished = true;
  });
  std::thread poster([&] { center.post("slow"); });
  ASSERT_TRUE(entered.wait());
  std::thread releaser([&] { release = true; });
  token.reset();
  EXPECT_TRUE(finished.load());
  releaser.join();
  poster.join();
}

// Spins (no sleep) until `condition` holds or the test deadline passes.
template <class Condition>
bool spinUntil(Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + testing::kDeadline;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= deadline)
      return false;
    std::this_thread::yield();
  }
  return true;
}

// One thread posts while another adds and removes observers. Each observer checks, while it
// runs, that its removal has not yet returned: removal must wait for a call under way.
TEST(NotificationCenter, ObserversComeAndGoWhileAnotherThreadPosts) {
  struct Round {
    std::atomic<bool> removed{false};
    std::atomic<int> calls{0};
  };
  NotificationCenter center;
  std::atomic<bool> stop{false};
  std::atomic<int> violations{0};
  std::thread poster([&] {
    while (!stop.load())
      center.post("tick");
  });
  for (int i = 0; i < 500; ++i) {
    auto round = std::make_shared<Round>();
    auto token = center.addObserver("tick", [&violations, round](const Notification&) {
      if (round->removed.load())
        ++violations;
      ++round->calls;
      if (round->removed.load())
        ++violations;
    });
    ASSERT_TRUE(spinUntil([&] { return round->calls.load() > 0; }));
    token.reset();
    round->removed.store(true);
  }
  stop = true;
  poster.join();
  EXPECT_EQ(violations.load(), 0);
  EXPECT_EQ(center.observerCount("tick"), 0u);
}

}  // namespace
}  // namespace vorn

// Observers register and leave on one thread while lifecycle notifications are posted on
// another; afterwards the manager's bookkeeping must still be exact. Run under
// ThreadSanitizer this also proves the manager and the centre race-free.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "BehaviorTestSupport.hpp"

namespace vorn {
namespace {

using test::Installation;
using test::observerOf;
using test::RecordingObserver;

TEST(BehaviorStress, ObserversRegisterWhileAnotherThreadPosts) {
  constexpr int kObservers = 200;
  constexpr int kPosts = 1000;
  Installation app;
  auto manager = app.launch("1.0");
  std::thread poster([&] {
    for (int i = 0; i < kPosts; ++i) {
      if (i % 2 == 0)
        app.foreground();
      else
        app.background();
    }
  });
  std::vector<std::shared_ptr<RecordingObserver>> kept;
  for (int i = 0; i < kObservers; ++i) {
    auto observer = observerOf({0, 1});
    manager->addObserver(observer);
    if (i % 2 == 0)
      kept.push_back(observer);
    else
      manager->removeObserver(observer.get());
  }
  poster.join();

  app.background();
  EXPECT_TRUE(manager->stickyBehaviors().empty());
  app.foreground();
  EXPECT_EQ(manager->stickyBehaviors().size(), kept.size());
  for (const auto& observer : kept)
    EXPECT_EQ(observer->received().back()->type(), BehaviorType::appForegrounded);
  auto late = observerOf({0});
  manager->addObserver(late);
  EXPECT_EQ(late->countOf(BehaviorType::appForegrounded), kept.size());
}

}  // namespace
}  // namespace vorn

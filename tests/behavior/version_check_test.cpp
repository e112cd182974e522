// The version check on each activation: first use, a new version (up or down), the same
// version, and a host that does not know its version.
#include <gtest/gtest.h>

#include <thread>

#include "BehaviorTestSupport.hpp"

namespace vorn {
namespace {

using test::behaviorLines;
using test::Installation;
using test::observerOf;
using testing::CaptureLogSink;

std::string previousVersionOf(const std::shared_ptr<const Behavior>& behavior) {
  const auto changed = std::dynamic_pointer_cast<const AppVersionChanged>(behavior);
  return changed ? changed->previousAppVersion() : "<not a version change>";
}

TEST(VersionCheck, FirstLaunchStoresTheVersionAndReportsNoChange) {
  Installation app;
  auto sink = CaptureLogSink::install();
  auto manager = app.launch("1.0");
  auto observer = observerOf({2});
  manager->addObserver(observer);
  app.activate();
  EXPECT_EQ(behaviorLines(*sink),
            (std::vector<std::string>{"Behavior listening started.", "ScreenEntry tracking enabled",
                                      "App is active.",
                                      "Storing current version \"1.0\" in keychain (first time "
                                      "use)."}));
  EXPECT_TRUE(observer->received().empty());
  EXPECT_TRUE(manager->stickyBehaviors().empty());
}

TEST(VersionCheck, NewVersionIsDeliveredAndReplayedToLaterObservers) {
  Installation app;
  app.launch("1.0");
  app.activate();

  auto sink = CaptureLogSink::install();
  auto manager = app.launch("2.0");
  auto first = observerOf({2});
  manager->addObserver(first);
  app.activate();
  ASSERT_EQ(first->received().size(), 1u);
  const auto change = first->received().front();
  EXPECT_EQ(change->type(), BehaviorType::appVersionChanged);
  EXPECT_EQ(previousVersionOf(change), "1.0");
  EXPECT_EQ(change->appVersion(), "2.0");
  EXPECT_EQ(change->appName(), "Tessarine");
  EXPECT_EQ(sink->count("Storing current version \"2.0\" in keychain."), 1u);

  auto later = observerOf({2});
  manager->addObserver(later);
  ASSERT_EQ(later->received().size(), 1u);
  EXPECT_EQ(later->received().front(), change);

  // The new version is now the stored one: the next launch of it changes nothing.
  sink->clear();
  auto third = app.launch("2.0");
  auto observer = observerOf({2});
  third->addObserver(observer);
  app.activate();
  EXPECT_TRUE(observer->received().empty());
  EXPECT_EQ(behaviorLines(*sink).back(), "App is active.");
}

TEST(VersionCheck, DowngradeCountsAsChange) {
  Installation app;
  app.launch("2.0");
  app.activate();
  auto manager = app.launch("1.5");
  auto observer = observerOf({2});
  manager->addObserver(observer);
  app.activate();
  ASSERT_EQ(observer->received().size(), 1u);
  EXPECT_EQ(previousVersionOf(observer->received().front()), "2.0");
}

TEST(VersionCheck, EveryActivationChecksButOnlyAChangeIsReported) {
  Installation app;
  app.launch("1.0");
  app.activate();
  auto sink = CaptureLogSink::install();
  auto manager = app.launch("1.1");
  auto observer = observerOf({2});
  manager->addObserver(observer);
  app.activate();
  app.activate();
  EXPECT_EQ(sink->count("App is active."), 2u);
  EXPECT_EQ(observer->received().size(), 1u);
  EXPECT_EQ(manager->stickyBehaviors().size(), 1u);
}

TEST(VersionCheck, UnknownAppVersionEndsTheCheck) {
  Installation app;
  auto sink = CaptureLogSink::install();
  app.launch(std::nullopt);
  app.activate();
  const auto lines = behaviorLines(*sink);
  ASSERT_GE(lines.size(), 2u);
  EXPECT_EQ(lines[lines.size() - 2], "App is active.");
  EXPECT_EQ(lines.back(), "Current bundle version is unavailable.");

  // Nothing was stored, so the first known version is a first use.
  app.launch("3.0");
  app.activate();
  EXPECT_TRUE(sink->contains("Storing current version \"3.0\" in keychain (first time use)."));
}

TEST(VersionCheck, ConcurrentActivationsReportOneChange) {
  Installation app;
  app.launch("1.0");
  app.activate();
  auto manager = app.launch("2.0");
  auto observer = observerOf({2});
  manager->addObserver(observer);
  std::thread other([&] { app.activate(); });
  app.activate();
  other.join();
  EXPECT_EQ(observer->received().size(), 1u);
}

}  // namespace
}  // namespace vorn

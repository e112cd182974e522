// Delivery to observers and the sticky list, with its once-per-live-observer recording.
#include <gtest/gtest.h>

#include "BehaviorTestSupport.hpp"
#include "vorn/logging/VORNSdkLogger.hpp"
#include "vorn/testing/ManualClock.hpp"

namespace vorn {
namespace {

using test::Installation;
using test::observerOf;
using test::RecordingObserver;
using testing::CaptureLogSink;

constexpr std::string_view kNotTaken =
    "onBehavior() couldn't be triggered, because observer is missing a type or type is not "
    "supported.";

TEST(BehaviorType, RawValuesAndConstruction) {
  EXPECT_EQ(kAllBehaviorTypes,
            (std::array{BehaviorType::appForegrounded, BehaviorType::appBackgrounded,
                        BehaviorType::appVersionChanged, BehaviorType::screenEntry}));
  for (int raw = 0; raw < 4; ++raw) {
    const auto type = behaviorTypeFromInt(raw);
    ASSERT_TRUE(type.has_value());
    EXPECT_EQ(rawValue(*type), raw);
  }
  EXPECT_EQ(behaviorTypeFromInt(-1), std::nullopt);
  EXPECT_EQ(behaviorTypeFromInt(4), std::nullopt);
}

TEST(Behavior, StampedFromThePlatform) {
  auto platform = testing::installEphemeralPlatform();
  platform.clock = std::make_shared<testing::ManualClock>(1'700'000'000'123);
  platform.app.appName = "Tessarine";
  Platform::install(platform);
  const AppForegrounded behavior;
  EXPECT_EQ(behavior.timestamp(), Date(std::chrono::milliseconds(1'700'000'000'123)));
  EXPECT_EQ(behavior.appVersion(), std::nullopt);
  EXPECT_EQ(behavior.appName(), "Tessarine");
  EXPECT_EQ(ScreenEntry("Home").name(), "Home");
  EXPECT_EQ(ScreenEntry("Home").type(), BehaviorType::screenEntry);
}

TEST(BehaviorManager, BackgroundClearsStickyForegrounds) {
  Installation app;
  auto manager = app.launch("1.0");
  auto watcher = observerOf({0, 1});
  manager->addObserver(watcher);
  app.foreground();
  app.background();
  EXPECT_EQ(watcher->countOf(BehaviorType::appForegrounded), 1u);
  EXPECT_EQ(watcher->countOf(BehaviorType::appBackgrounded), 1u);

  auto later = observerOf({0, 1});
  manager->addObserver(later);
  EXPECT_TRUE(later->received().empty());
  EXPECT_TRUE(manager->stickyBehaviors().empty());
}

TEST(BehaviorManager, ForegroundIsRecordedOncePerLiveObserver) {
  Installation app;
  auto manager = app.launch("1.0");
  auto interested = observerOf({0});
  auto uninterested = observerOf({3});
  manager->addObserver(interested);
  manager->addObserver(uninterested);
  app.foreground();
  EXPECT_EQ(manager->stickyBehaviors().size(), 2u);

  auto third = observerOf({0});
  manager->addObserver(third);
  EXPECT_EQ(third->countOf(BehaviorType::appForegrounded), 2u);
  EXPECT_TRUE(uninterested->received().empty());
}

TEST(BehaviorManager, NoLiveObserverRecordsNothing) {
  Installation app;
  auto manager = app.launch("1.0");
  app.foreground();
  auto released = observerOf({0});
  manager->addObserver(released);
  released.reset();
  app.foreground();
  auto later = observerOf({0});
  manager->addObserver(later);
  EXPECT_TRUE(later->received().empty());
}

TEST(BehaviorManager, WarnsOncePerStickyBehaviourNotTaken) {
  Installation app;
  auto manager = app.launch("1.0");
  auto first = observerOf({0});
  auto second = observerOf({0});
  manager->addObserver(first);
  manager->addObserver(second);
  app.foreground();

  auto sink = CaptureLogSink::install();
  manager->addObserver(observerOf({1, 2, 3}));
  EXPECT_EQ(sink->count(kNotTaken), 2u);
  const auto line = sink->find(kNotTaken);
  ASSERT_NE(line, nullptr);
  EXPECT_EQ(line->level, LogLevel::warning);
  EXPECT_EQ(line->category, LoggerCategory::behavior);
  EXPECT_EQ(line->subsystem, "VORNSdk");
}

TEST(BehaviorManager, WarningIsRedactedLikeEveryLine) {
  Installation app;
  auto manager = app.launch("1.0");
  auto kept = observerOf({0});
  manager->addObserver(kept);
  app.foreground();
  auto sink = CaptureLogSink::install();
  VORNSdkLogger::shared().setRedactedValues({"OBSERVER"});
  manager->addObserver(observerOf({}));
  VORNSdkLogger::shared().setRedactedValues({});
  EXPECT_EQ(sink->count("onBehavior() couldn't be triggered, because [REDACTED] is missing a type "
                        "or type is not supported."),
            1u);
}

TEST(BehaviorManager, ReleasedObserverIsDroppedOnDelivery) {
  Installation app;
  auto manager = app.launch("1.0");
  auto kept = observerOf({0});
  auto released = observerOf({0});
  manager->addObserver(kept);
  manager->addObserver(released);
  released.reset();
  EXPECT_EQ(manager->observationCount(), 2u);
  app.foreground();
  EXPECT_EQ(manager->observationCount(), 1u);
  EXPECT_EQ(manager->stickyBehaviors().size(), 1u);
  EXPECT_EQ(kept->countOf(BehaviorType::appForegrounded), 1u);
}

TEST(BehaviorManager, RemovedObserverReceivesNothing) {
  Installation app;
  auto manager = app.launch("1.0");
  auto removed = observerOf({0});
  manager->addObserver(removed);
  manager->removeObserver(removed.get());
  const RecordingObserver unknown({0});
  manager->removeObserver(&unknown);
  manager->removeObserver(nullptr);
  app.foreground();
  EXPECT_TRUE(removed->received().empty());
  EXPECT_EQ(manager->observationCount(), 0u);
}

TEST(BehaviorManager, RegisteringAgainReplacesTheEntryAndReplaysAgain) {
  Installation app;
  auto manager = app.launch("1.0");
  auto observer = observerOf({0});
  manager->addObserver(observer);
  app.foreground();
  manager->addObserver(observer);
  EXPECT_EQ(manager->observationCount(), 1u);
  EXPECT_EQ(observer->countOf(BehaviorType::appForegrounded), 2u);
  manager->addObserver(nullptr);
  EXPECT_EQ(manager->observationCount(), 1u);
}

TEST(BehaviorManager, ObserverMayRegisterAndRemoveFromOnBehavior) {
  Installation app;
  auto manager = app.launch("1.0");
  auto newcomer = observerOf({0});
  auto observer = observerOf({0});
  observer->onEach([&manager, &newcomer, self = observer.get()](const Behavior&) {
    manager->addObserver(newcomer);
    manager->removeObserver(self);
  });
  manager->addObserver(observer);
  app.foreground();
  // The newcomer registered after the foreground was recorded: it gets it from the replay.
  EXPECT_EQ(newcomer->countOf(BehaviorType::appForegrounded), 1u);
  EXPECT_EQ(manager->observationCount(), 1u);
  app.foreground();
  EXPECT_EQ(observer->countOf(BehaviorType::appForegrounded), 1u);
  EXPECT_EQ(newcomer->countOf(BehaviorType::appForegrounded), 2u);
}

}  // namespace
}  // namespace vorn

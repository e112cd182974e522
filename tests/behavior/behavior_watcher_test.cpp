// The watcher: lifecycle lines, screen notifications, the screen hook, and its registrations.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "BehaviorTestSupport.hpp"

namespace vorn {
namespace {

using test::behaviorLines;
using test::Installation;
using test::observerOf;
using testing::CaptureLogSink;

void postScreen(NotificationCenter& center, std::optional<Dictionary> userInfo) {
  center.post(kScreenDidAppearNotification, std::move(userInfo));
}

TEST(BehaviorWatcher, LifecycleLinesAndBehaviours) {
  Installation app;
  auto manager = app.launch("1.0");
  auto observer = observerOf({0, 1});
  manager->addObserver(observer);
  auto sink = CaptureLogSink::install();
  app.foreground();
  app.background();
  EXPECT_EQ(behaviorLines(*sink),
            (std::vector<std::string>{"App moved to foreground.", "App moved to background."}));
  ASSERT_EQ(observer->received().size(), 2u);
  EXPECT_EQ(observer->received()[0]->type(), BehaviorType::appForegrounded);
  EXPECT_EQ(observer->received()[1]->type(), BehaviorType::appBackgrounded);
}

TEST(BehaviorWatcher, ScreenNotificationMakesAScreenEntry) {
  Installation app;
  auto manager = app.launch("1.0");
  auto observer = observerOf({3});
  manager->addObserver(observer);
  auto sink = CaptureLogSink::install();
  postScreen(*app.center, Dictionary{{"name", "CheckoutViewController"}});
  EXPECT_EQ(behaviorLines(*sink),
            std::vector<std::string>{"App screen changed. Screen entry: CheckoutViewController."});
  ASSERT_EQ(observer->received().size(), 1u);
  const auto entry = std::dynamic_pointer_cast<const ScreenEntry>(observer->received().front());
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->name(), "CheckoutViewController");
  EXPECT_TRUE(manager->stickyBehaviors().empty());
}

TEST(BehaviorWatcher, ScreenNotificationWithoutANameIsIgnoredSilently) {
  Installation app;
  auto manager = app.launch("1.0");
  auto observer = observerOf({3});
  manager->addObserver(observer);
  auto sink = CaptureLogSink::install();
  postScreen(*app.center, std::nullopt);
  postScreen(*app.center, Dictionary{});
  postScreen(*app.center, Dictionary{{"title", "Home"}});
  postScreen(*app.center, Dictionary{{"name", 42}});
  postScreen(*app.center, Dictionary{{"name", nullptr}});
  EXPECT_TRUE(sink->lines().empty());
  EXPECT_TRUE(observer->received().empty());
}

class CountingDelegate : public BehaviorDelegate {
 public:
  explicit CountingDelegate(std::shared_ptr<std::atomic<int>> count) : count_(std::move(count)) {}
  void deliver(const std::shared_ptr<const Behavior>&) override { ++*count_; }

 private:
  const std::shared_ptr<std::atomic<int>> count_;
};

TEST(BehaviorWatcher, HoldsItsDelegateWeakly) {
  Installation app;
  app.launch("1.0");
  app.manager.reset();
  auto watcher = std::make_shared<BehaviorWatcher>(true, app.center, nullptr);
  auto sink = CaptureLogSink::install();
  watcher->start();
  watcher->start();
  EXPECT_EQ(sink->count("Behavior listening started."), 1u);
  EXPECT_EQ(app.center->observerCount(kApplicationWillEnterForegroundNotification), 1u);

  auto deliveries = std::make_shared<std::atomic<int>>(0);
  auto delegate = std::make_shared<CountingDelegate>(deliveries);
  watcher->setDelegate(delegate);
  app.foreground();
  EXPECT_EQ(deliveries->load(), 1);
  delegate.reset();
  app.foreground();
  postScreen(*app.center, Dictionary{{"name", "Home"}});
  EXPECT_EQ(deliveries->load(), 1);
  EXPECT_EQ(sink->count("App moved to foreground."), 2u);
  EXPECT_EQ(sink->count("App screen changed. Screen entry: Home."), 1u);
}

TEST(BehaviorWatcher, RegistersFourObserversAndRemovesThemWithTheManager) {
  Installation app;
  auto manager = app.launch("1.0");
  app.manager.reset();
  for (const auto name :
       {kApplicationWillEnterForegroundNotification, kApplicationDidEnterBackgroundNotification,
        kApplicationDidBecomeActiveNotification, kScreenDidAppearNotification}) {
    EXPECT_EQ(app.center->observerCount(name), 1u) << name;
  }
  manager.reset();
  EXPECT_EQ(app.center->observerCount(kScreenDidAppearNotification), 0u);
  EXPECT_EQ(app.center->observerCount(kApplicationDidBecomeActiveNotification), 0u);
}

TEST(ScreenHook, ViewDidAppearPostsOnTheDefaultCentreOnceInstalled) {
  Installation app;
  app.launch("1.0");
  auto manager = BehaviorManager::create({}, NotificationCenter::defaultCenter(), nullptr);
  EXPECT_TRUE(BehaviorWatcher::screenTrackingHookInstalled());
  BehaviorWatcher::swizzleViewDidAppearForScreenTracking();
  auto observer = observerOf({3});
  manager->addObserver(observer);
  BehaviorWatcher::viewDidAppear("ProfileViewController");
  ASSERT_EQ(observer->received().size(), 1u);
  EXPECT_EQ(std::dynamic_pointer_cast<const ScreenEntry>(observer->received().front())->name(),
            "ProfileViewController");
}

// Run in a process of its own: the hook, once installed, stays for the life of the process.
// The child reports what went wrong on standard error and exits non-zero.
int screenTrackingOffChild() {
  Installation app;
  app.launch("1.0", {.enableScreenEntryTracking = false});
  auto sink = CaptureLogSink::install();
  BehaviorManager::setup({.enableScreenEntryTracking = false});
  const auto manager = BehaviorManager::shared();
  BehaviorManager::setup({.enableScreenEntryTracking = true});
  auto observer = observerOf({3});
  manager->addObserver(observer);
  BehaviorWatcher::viewDidAppear("HomeViewController");
  const char* failure = nullptr;
  if (BehaviorWatcher::screenTrackingHookInstalled())
    failure = "hook installed";
  else if (manager->behaviorWatcher()->enableScreenTracking())
    failure = "setup() after shared() took effect";
  else if (sink->contains("ScreenEntry tracking enabled"))
    failure = "screen tracking line written";
  else if (!observer->received().empty())
    failure = "screen delivered";
  else if (NotificationCenter::defaultCenter()->observerCount(kScreenDidAppearNotification) != 1)
    failure = "screen observer not registered";
  else if (!sink->contains("Behavior listening started."))
    failure = "watcher not started";
  if (failure != nullptr)
    std::fputs(failure, stderr);
  return failure == nullptr ? 0 : 1;
}

TEST(ScreenHook, TrackingOffInstallsNoHookButKeepsTheScreenObserver) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(std::exit(screenTrackingOffChild()), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace vorn

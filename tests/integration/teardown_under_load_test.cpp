#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "vorn/core/ConfigBuilder.hpp"
#include "vorn/events/CustomEvent.hpp"
#include "vorn/sdk/VORNSdk.hpp"
#include "vorn/testing/FakeCdpModule.hpp"
#include "vorn/testing/FakeModuleConfig.hpp"
#include "vorn/testing/FakePushModule.hpp"
#include "vorn/testing/PlatformInstall.hpp"
#include "vorn/testing/TimeScale.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn::integration {
namespace {

// Configurations are compared by their stored properties only.
std::vector<ModuleConfig::Property> storedAppId(const std::string& appId) {
  return {{"appId", Value(appId)}};
}

using testing::FakeModuleConfig;

constexpr const char* kTimedOut = "Module initialization timeout exceeded";

// Keeps every line's cost (the logger runs at debug level) but only counts the time-outs,
// so a thousand cycles do not hold millions of lines.
class CountingSink final : public LogOutputter {
 public:
  void out(LogLevel, std::string_view, LoggerCategory, std::string_view message) override {
    lines.fetch_add(1, std::memory_order_relaxed);
    if (message == kTimedOut)
      timeouts.fetch_add(1);
  }
  std::atomic<long> lines{0};
  std::atomic<int> timeouts{0};
};

int cycles() {
  const char* value = std::getenv("VORN_TEARDOWN_CYCLES");
  const int parsed = value ? std::atoi(value) : 0;
  return parsed > 0 ? parsed : 100;
}

Config configuration(const std::string& appId) {
  return ConfigBuilder()
      .setPush(std::make_shared<FakeModuleConfig>(ModuleName::push, appId, storedAppId(appId)))
      .setCdp(std::make_shared<FakeModuleConfig>(ModuleName::cdp, appId, storedAppId(appId)))
      .build();
}

// One app thread: everything an app does while the SDK is being restarted under it.
void useTheSdk(const std::atomic<bool>& stop, int thread) {
  for (int i = 0; !stop.load(); ++i) {
    VORNSdk::track(CustomEvent::create("load-" + std::to_string(thread)));
    VORNSdk::identity()->setProfileId("user-" + std::to_string(i % 7));
    VORNSdk::identity()->setProfileAttributes({{"tier", "gold"}}, {ModuleName::cdp});
    VORNSdk::state();
    VORNSdk::identity()->toJson();
    VORNSdk::cdp()->getConsent();
    VORNSdk::cdp()->setConsent(Consent::optIn);
    VORNSdk::mp()->addTag("tag");
    VORNSdk::mp()->getStatus();
    VORNSdk::requestPushSdk([](std::shared_ptr<PushInterface> push) { push->tags(); });
  }
}

TEST(TeardownUnderLoad, RestartsAndTeardownsWhileEightThreadsUseTheSdk) {
  testing::installEphemeralPlatform();
  testing::ScopedTimeScale fast{0.02};  // a start-up that loses a module gives up in 100 ms
  const auto sink = std::make_shared<CountingSink>();
  VORNSdk::setLogger(LogLevel::debug, sink);
  testing::FakePushModule::registerClass();
  testing::FakeCdpModule::registerClass();
  const Config configs[] = {configuration("APP1"), configuration("APP2")};

  std::atomic<bool> stop{false};
  std::vector<std::thread> app;
  for (int thread = 0; thread < 8; ++thread)
    app.emplace_back(useTheSdk, std::cref(stop), thread);

  const int total = cycles();
  for (int cycle = 0; cycle < total; ++cycle) {
    const Config& config = configs[cycle % 2];
    const int timeoutsBefore = sink->timeouts.load();
    VORNSdk::initializeSdk(config);
    if (cycle % 3 == 0)
      VORNSdk::tearDownModule(cycle % 2 ? ModuleName::push : ModuleName::cdp);
    // Each start-up ends READY with its own configuration or gives up; neither may hang.
    ASSERT_TRUE(testing::waitUntil([&] {
      const auto last = VORNSdk::lastAppliedConfiguration();
      return (last && *last == config) || sink->timeouts.load() > timeoutsBefore;
    })) << "cycle "
        << cycle;
  }

  stop = true;
  for (std::thread& thread : app)
    thread.join();
  VORNSdk::tearDownModule(ModuleName::push);
  VORNSdk::tearDownModule(ModuleName::cdp);
  EXPECT_GT(sink->lines.load(), 0);
  EXPECT_GT(testing::FakePushModule::Class::started().size(), 0u);
}

}  // namespace
}  // namespace vorn::integration

// An app that started the SDK with both reference modules and then has nothing to do must not
// be woken by the library: once start-up is over and the modules have settled, none of the
// threads the library started runs, neither after start-up nor after an upload. The modules
// are loaded from their libraries, as a host that only knows their paths loads them; the test
// is skipped when they are not built.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "ThreadStats.hpp"
#include "support/LoopbackServer.hpp"
#include "vorn/core/ConfigBuilder.hpp"
#include "vorn/core/ModuleRegistry.hpp"
#include "vorn/core/ModuleSettingsParsers.hpp"
#include "vorn/events/CustomEvent.hpp"
#include "vorn/platform/Platform.hpp"
#include "vorn/sdk/VORNSdk.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"
#include "vorn/testing/TimeScale.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using test::describe;
using test::libraryThreads;
using test::Switches;
using test::wakeupsBetween;
using testing::waitUntil;

// The library's fixed waits are compressed tenfold, so that the modules' start-up time-outs
// (15 s at full scale), armed before READY and cancelled when the modules start, would fall
// inside the measured window if they still woke the process.
constexpr double kTimeScale = 0.1;
constexpr auto kWindow = 2s;

// Takes event batches as the cdp module's collector does, counting them. The push module has
// no work in these tests and sends nothing.
class Collector {
 public:
  Collector() {
    server_.server().Post("/v1/events", [this](const httplib::Request&, httplib::Response& res) {
      res.set_header("Connection", "close");
      res.status = 202;
      ++batches_;
    });
    server_.start();
    // Its worker threads may start just after start() returns; once a request is answered
    // they are there, and are counted with the test's threads rather than the library's.
    httplib::Client(server_.url()).Get("/");
  }
  std::string url() const { return server_.url(); }
  int batches() const { return batches_.load(); }

 private:
  std::atomic<int> batches_{0};
  test::LoopbackServer server_;
};

class IdleWithModulesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    preexisting_ = test::threadsBeforeTheLibrary();
#if defined(VORN_CDP_LIBRARY) && defined(VORN_PUSH_LIBRARY)
    ASSERT_TRUE(ModuleRegistry::loadLibrary(VORN_CDP_LIBRARY));
    ASSERT_TRUE(ModuleRegistry::loadLibrary(VORN_PUSH_LIBRARY));
#else
    GTEST_SKIP() << "the example modules are not built";
#endif
    Platform::install(Platform::defaultPlatform(directory_.path() / "sdk"));
  }

  void TearDown() override {
    VORNSdk::tearDownModule(ModuleName::cdp);
    VORNSdk::tearDownModule(ModuleName::push);
  }

  std::shared_ptr<const ModuleConfig> config(ModuleName name, nlohmann::json settings) const {
    settings["appId"] = "idle-app";
    settings["endpoint"] = collector_.url();
    const auto parsed = ModuleSettingsParsers::parse(name, settings);
    EXPECT_NE(parsed.config, nullptr) << parsed.error;
    return parsed.config;
  }

  // Starts the SDK with both modules and waits until start-up is over and both answered.
  void startBothModules() {
    const auto answered = std::make_shared<std::atomic<int>>(0);
    const auto succeeded = std::make_shared<std::atomic<int>>(0);
    auto record = [answered, succeeded](OperationResult result) {
      *succeeded += result == OperationResult::success ? 1 : 0;
      ++*answered;
    };
    const nlohmann::json cdp{{"batchSize", 2u},
                             {"flushIntervalSeconds", 1},
                             {"dataDirectory", (directory_.path() / "sdk").string()}};
    VORNSdk::initializeSdk(ConfigBuilder()
                               .setCdp(config(ModuleName::cdp, cdp), record)
                               .setPush(config(ModuleName::push, nlohmann::json::object()), record)
                               .build());
    ASSERT_TRUE(waitUntil([&] {
      return *answered == 2 && VORNSdk::initializationState() == InitializationState::READY;
    }));
    ASSERT_EQ(*succeeded, 2);
  }

  // Waits until the library's threads are quiet, then measures them over kWindow: a fixed span
  // of idleness is what is being checked.
  void expectNoWakeupsOnceSettled() {
    ASSERT_TRUE(test::waitForTheThreadsToSettle(preexisting_));
    const Switches before = libraryThreads(preexisting_);
    std::this_thread::sleep_for(kWindow);
    const Switches wakeups = wakeupsBetween(before, libraryThreads(preexisting_));
    EXPECT_TRUE(wakeups.empty()) << "library threads woke up while idle:" << describe(wakeups)
                                 << " of" << describe(before);
  }

  // The threads there are before the library starts any, the collector's among them.
  Collector collector_;
  Switches preexisting_;
  testing::ScopedTimeScale timeScale_{kTimeScale};
  testing::TemporaryDirectory directory_;
  // Keeps the library's debug lines out of the test's output.
  std::shared_ptr<testing::CaptureLogSink> log_ = testing::CaptureLogSink::install();
};

TEST_F(IdleWithModulesTest, NoThreadOfTheLibraryWakesOnceBothModulesHaveStarted) {
  ASSERT_NO_FATAL_FAILURE(startBothModules());
  expectNoWakeupsOnceSettled();
}

TEST_F(IdleWithModulesTest, NoThreadOfTheLibraryWakesOnceAFullBatchIsUploaded) {
  ASSERT_NO_FATAL_FAILURE(startBothModules());
  // The first event arms the flush timer (1 s); the second fills the batch, which goes at
  // once and leaves the timer nothing to flush.
  VORNSdk::track(CustomEvent::create("first"));
  VORNSdk::track(CustomEvent::create("second"));
  ASSERT_TRUE(waitUntil(
      [] { return VORNSdk::state().find("\"uploadedEvents\": 2") != std::string::npos; }));
  EXPECT_EQ(collector_.batches(), 1);
  expectNoWakeupsOnceSettled();
}

}  // namespace
}  // namespace vorn

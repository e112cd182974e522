// Several threads log while another reconfigures level, sink, filters and redaction. Run
// under ThreadSanitizer this proves the configuration is race-free; in any build it checks
// that every line reaching a sink is whole and scrubbed.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "vorn/logging/Log.hpp"
#include "vorn/logging/ModuleLogger.hpp"
#include "vorn/sdk/VORNSdk.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;

TEST(LoggerStress, ReconfiguringWhileLoggingIsSafe) {
  auto first = std::make_shared<CaptureLogSink>();
  auto second = std::make_shared<CaptureLogSink>();
  std::atomic<bool> stop{false};
  constexpr int kLoggers = 4;
  testing::Latch allLogging(kLoggers);
  std::vector<std::thread> loggers;
  for (int t = 0; t < kLoggers; ++t) {
    loggers.emplace_back([&, t] {
      ModuleLogger module(t % 2 == 0 ? ModuleName::cdp : ModuleName::push, {"pin"});
      for (int i = 0; !stop; ++i) {
        VORN_LOG_DEBUG(LoggerCategory::network, "token pin " + std::to_string(i));
        module.w(LoggerCategory::auth, "token pin " + std::to_string(i));
        if (i == 0)
          allLogging.countDown();
      }
    });
  }
  // On a loaded machine the loggers may not have run at all before the reconfiguring is
  // over, which would prove nothing: it starts once all of them log, and a last, settled
  // configuration lets lines through before they stop.
  std::thread configurer([&] {
    allLogging.wait();
    for (int i = 0; i < 2000; ++i) {
      auto sink = i % 2 == 0 ? first : second;
      VORNSdk::setLogger(i % 3 == 0 ? LogLevel::warning : LogLevel::debug, sink,
                         {LoggerCategory::network, LoggerCategory::auth});
      VORNSdkLogger::shared().setRedactedValues({"token"});
      if (i % 7 == 0)
        VORNSdk::setLogger(LogLevel::debug, nullptr);
      if (i % 5 == 0)
        VORNSdk::clearLoggerFilters();
    }
    VORNSdk::setLogger(LogLevel::debug, first);
    testing::waitUntil([&] { return !first->lines().empty(); });
    stop = true;
  });
  configurer.join();
  for (auto& thread : loggers)
    thread.join();

  std::size_t total = 0;
  for (const auto& sink : {first, second}) {
    for (const auto& line : sink->lines()) {
      ++total;
      EXPECT_TRUE(line.message.rfind("[REDACTED] ", 0) == 0 || line.message.rfind("token ", 0) == 0)
          << line.message;
      if (line.subsystem != "VORNSdk") {
        EXPECT_NE(line.message.find("[REDACTED] "), std::string::npos) << line.message;
        EXPECT_EQ(line.message.find("pin"), std::string::npos) << line.message;
      }
    }
  }
  EXPECT_GT(total, 0u);
}

}  // namespace
}  // namespace vorn

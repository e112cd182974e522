#include <gtest/gtest.h>

#include "vorn/logging/Log.hpp"
#include "vorn/sdk/VORNSdk.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;

void logAllLevels(LoggerCategory category) {
  auto& logger = VORNSdkLogger::shared();
  logger.debugWithCategory(category, "d");
  logger.warningWithCategory(category, "w");
  logger.errorWithCategory(category, "e");
  logger.faultWithCategory(category, "f");
}

TEST(Logger, FreshProcessIsSilentAtEveryLevel) {
  EXPECT_EQ(VORNSdk::getLogLevel(), LogLevel::none);
  EXPECT_EQ(VORNSdkLogger::shared().logOutputter(), nullptr);
  EXPECT_FALSE(VORNSdkLogger::enabled(LogLevel::fault, LoggerCategory::sdk));
  // A sink installed with level none still receives nothing.
  auto sink = std::make_shared<CaptureLogSink>();
  VORNSdk::setLogger(LogLevel::none, sink);
  logAllLevels(LoggerCategory::sdk);
  EXPECT_TRUE(sink->lines().empty());
}

TEST(Logger, LevelThresholdDropsLowerLevels) {
  auto sink = std::make_shared<CaptureLogSink>();
  VORNSdk::setLogger(LogLevel::warning, sink);
  logAllLevels(LoggerCategory::network);
  EXPECT_EQ(sink->messages(), (std::vector<std::string>{"w", "e", "f"}));
  EXPECT_EQ(VORNSdk::getLogLevel(), LogLevel::warning);
}

TEST(Logger, NoSinkMeansNoOutputWhateverTheLevel) {
  auto sink = std::make_shared<CaptureLogSink>();
  VORNSdk::setLogger(LogLevel::debug, sink);
  VORNSdk::setLogger(LogLevel::debug, nullptr);
  logAllLevels(LoggerCategory::sdk);
  EXPECT_TRUE(sink->lines().empty());
}

TEST(Logger, LineCarriesLevelSubsystemCategoryAndBareMessage) {
  auto sink = CaptureLogSink::install();
  VORNSdkLogger::shared().errorWithCategory(LoggerCategory::sdk, "boom");
  VORNSdkLogger::shared().logMessage(LogLevel::warning, LoggerSubsystem::module(ModuleName::cdp),
                                     LoggerCategory::storage, "saved");
  const auto lines = sink->lines();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0].level, LogLevel::error);
  EXPECT_EQ(lines[0].subsystem, "VORNSdk");
  EXPECT_EQ(lines[0].category, LoggerCategory::sdk);
  EXPECT_EQ(lines[0].message, "boom");
  EXPECT_EQ(lines[1].subsystem, "cdp");
  EXPECT_EQ(lines[1].category, LoggerCategory::storage);
}

TEST(Logger, FiltersSelectCategoriesAndClear) {
  auto sink = std::make_shared<CaptureLogSink>();
  VORNSdk::setLogger(LogLevel::debug, sink, {LoggerCategory::network});
  VORNSdkLogger::shared().debugWithCategory(LoggerCategory::network, "net");
  VORNSdkLogger::shared().debugWithCategory(LoggerCategory::auth, "auth");
  EXPECT_EQ(sink->messages(), (std::vector<std::string>{"net"}));

  VORNSdk::clearLoggerFilters();
  EXPECT_TRUE(VORNSdkLogger::shared().filters().empty());
  VORNSdkLogger::shared().debugWithCategory(LoggerCategory::network, "net");
  VORNSdkLogger::shared().debugWithCategory(LoggerCategory::auth, "auth");
  EXPECT_EQ(sink->messages(), (std::vector<std::string>{"net", "net", "auth"}));
}

TEST(Logger, FiltersAccumulateAcrossCallsAndKeepDuplicates) {
  auto sink = std::make_shared<CaptureLogSink>();
  VORNSdk::setLogger(LogLevel::debug, sink, {LoggerCategory::auth});
  VORNSdk::setLogger(LogLevel::debug, sink, {LoggerCategory::network, LoggerCategory::sdk});
  VORNSdk::setLogger(LogLevel::debug, sink, {LoggerCategory::auth});
  // The two-argument form leaves the filters alone.
  VORNSdk::setLogger(LogLevel::debug, sink);
  EXPECT_EQ(VORNSdkLogger::shared().filters(),
            (std::vector<std::string>{"auth", "network", "vornsdk", "auth"}));
  VORNSdkLogger::shared().debugWithCategory(LoggerCategory::auth, "a");
  VORNSdkLogger::shared().debugWithCategory(LoggerCategory::network, "n");
  VORNSdkLogger::shared().debugWithCategory(LoggerCategory::sdk, "s");
  VORNSdkLogger::shared().debugWithCategory(LoggerCategory::storage, "dropped");
  EXPECT_EQ(sink->messages(), (std::vector<std::string>{"a", "n", "s"}));
}

TEST(Logger, MacroDoesNotEvaluateMessageWhenDisabled) {
  int built = 0;
  auto message = [&] {
    ++built;
    return std::string("built");
  };
  VORN_LOG_DEBUG(LoggerCategory::sdk, message());
  EXPECT_EQ(built, 0);

  auto sink = CaptureLogSink::install(LogLevel::warning);
  VORN_LOG_DEBUG(LoggerCategory::sdk, message());
  EXPECT_EQ(built, 0);
  VORN_LOG_WARNING(LoggerCategory::sdk, message());
  EXPECT_EQ(built, 1);
  EXPECT_TRUE(sink->contains("built"));
}

TEST(Logger, SharedRedactionIsCaseInsensitive) {
  auto sink = CaptureLogSink::install();
  VORNSdkLogger::shared().setRedactedValues({"secret"});
  VORNSdkLogger::shared().debugWithCategory(LoggerCategory::sdk, "SECRET and secret");
  EXPECT_EQ(sink->messages(), (std::vector<std::string>{"[REDACTED] and [REDACTED]"}));
  EXPECT_EQ(VORNSdkLogger::shared().redactedValues(), (std::vector<std::string>{"secret"}));
}

TEST(Logger, SinkMayLogFromInsideOut) {
  struct Echo : LogOutputter {
    std::vector<std::string> seen;
    void out(LogLevel, std::string_view, LoggerCategory, std::string_view message) override {
      seen.emplace_back(message);
      if (message == "outer")
        VORNSdkLogger::shared().debugWithCategory(LoggerCategory::sdk, "inner");
    }
  };
  auto echo = std::make_shared<Echo>();
  VORNSdk::setLogger(LogLevel::debug, echo);
  VORNSdkLogger::shared().debugWithCategory(LoggerCategory::sdk, "outer");
  EXPECT_EQ(echo->seen, (std::vector<std::string>{"outer", "inner"}));
}

TEST(LogLevel, RawValuesOrderAndPlatformTypes) {
  EXPECT_EQ(logLevelFrom(0), LogLevel::debug);
  EXPECT_EQ(logLevelFrom(4), LogLevel::none);
  EXPECT_EQ(logLevelFrom(5), std::nullopt);
  EXPECT_EQ(logLevelFrom(-1), std::nullopt);
  EXPECT_LT(LogLevel::debug, LogLevel::warning);
  EXPECT_GE(LogLevel::none, LogLevel::fault);
  EXPECT_TRUE(canLog(LogLevel::warning, LogLevel::error));
  EXPECT_TRUE(canLog(LogLevel::warning, LogLevel::warning));
  EXPECT_FALSE(canLog(LogLevel::warning, LogLevel::debug));
  EXPECT_EQ(getOSLogType(LogLevel::debug), OSLogType::debug);
  EXPECT_EQ(getOSLogType(LogLevel::warning), OSLogType::defaultType);
  EXPECT_EQ(getOSLogType(LogLevel::error), OSLogType::error);
  EXPECT_EQ(getOSLogType(LogLevel::fault), OSLogType::fault);
  EXPECT_EQ(getOSLogType(LogLevel::none), std::nullopt);
}

TEST(LogOutputter, DefaultSinkWritesOneLineToStandardError) {
  LogOutputter outputter;
  ::testing::internal::CaptureStderr();
  outputter.out(LogLevel::warning, "push", LoggerCategory::network, "hello");
  outputter.out(LogLevel::none, "push", LoggerCategory::network, "never");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "push/network default: hello\n");
}

}  // namespace
}  // namespace vorn

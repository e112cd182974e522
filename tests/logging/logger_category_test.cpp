#include <gtest/gtest.h>

#include "vorn/logging/LoggerCategory.hpp"
#include "vorn/logging/LoggerSubsystem.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;

constexpr std::string_view kInvalidCategory = "Invalid Logger Category. Defaulting to .sdk";

TEST(LoggerCategory, RawValuesInDeclarationOrder) {
  const std::vector<std::string_view> expected{
      "auth",     "behavior",  "encryption", "eventBus", "network",  "module",
      "vornsdk",  "storage",   "consent",    "coredata", "database", "event",
      "identity", "interface", "location",   "session",  "util"};
  for (int i = 0; i < kLoggerCategoryCount; ++i) {
    EXPECT_EQ(rawValue(static_cast<LoggerCategory>(i)), expected[static_cast<std::size_t>(i)]);
  }
}

TEST(LoggerCategory, ParsingLowerCasesFirst) {
  auto sink = CaptureLogSink::install();
  EXPECT_EQ(loggerCategoryFrom("AUTH"), LoggerCategory::auth);
  EXPECT_EQ(loggerCategoryFrom("Network"), LoggerCategory::network);
  EXPECT_EQ(loggerCategoryFrom("sdk"), LoggerCategory::sdk);
  EXPECT_EQ(loggerCategoryFrom("util"), LoggerCategory::util);
  EXPECT_TRUE(sink->lines().empty());
}

TEST(LoggerCategory, UnmatchedTextFallsBackToSdkWithErrorLine) {
  auto sink = CaptureLogSink::install();
  // "eventBus" is lower-cased before it is compared with "eventBus": it never matches.
  EXPECT_EQ(loggerCategoryFrom("eventBus"), LoggerCategory::sdk);
  EXPECT_EQ(loggerCategoryFrom("EVENTBUS"), LoggerCategory::sdk);
  // The sdk category's own raw value does not parse back.
  EXPECT_EQ(loggerCategoryFrom("vornsdk"), LoggerCategory::sdk);
  EXPECT_EQ(loggerCategoryFrom(""), LoggerCategory::sdk);
  EXPECT_EQ(sink->count(kInvalidCategory), 4u);
  const auto line = sink->find(kInvalidCategory);
  ASSERT_NE(line, nullptr);
  EXPECT_EQ(line->level, LogLevel::error);
  EXPECT_EQ(line->category, LoggerCategory::sdk);
  EXPECT_EQ(line->subsystem, "VORNSdk");
}

TEST(LoggerSubsystem, PrintsAndParsesAsymmetrically) {
  EXPECT_EQ(rawValue(LoggerSubsystem::sdk()), "VORNSdk");
  EXPECT_EQ(rawValue(LoggerSubsystem::module(ModuleName::cdp)), "cdp");
  EXPECT_EQ(rawValue(LoggerSubsystem::module(ModuleName::push)), "push");
  EXPECT_EQ(loggerSubsystemFrom("sdk"), LoggerSubsystem::sdk());
  EXPECT_EQ(loggerSubsystemFrom("push"), LoggerSubsystem::module(ModuleName::push));
  EXPECT_EQ(loggerSubsystemFrom("cdp"), LoggerSubsystem::module(ModuleName::cdp));
  EXPECT_EQ(loggerSubsystemFrom("VORNSdk"), std::nullopt);
  EXPECT_EQ(loggerSubsystemFrom("PUSH"), std::nullopt);
}

}  // namespace
}  // namespace vorn

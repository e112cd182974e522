#include <gtest/gtest.h>

#include "vorn/logging/ModuleLogger.hpp"
#include "vorn/sdk/VORNSdk.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

using testing::CaptureLogSink;

std::string redactedThroughModule(std::vector<std::string> values, std::string_view message) {
  auto sink = CaptureLogSink::install();
  ModuleLogger logger(ModuleName::cdp, std::move(values));
  logger.d(LoggerCategory::module, message);
  const auto messages = sink->messages();
  return messages.empty() ? "<nothing>" : messages.back();
}

TEST(ModuleLogger, WritesUnderModuleSubsystemRedacted) {
  auto sink = CaptureLogSink::install();
  ModuleLogger logger(ModuleName::push, {"token123"});
  logger.w(LoggerCategory::network, "sent token123");
  const auto lines = sink->lines();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].message, "sent [REDACTED]");
  EXPECT_EQ(lines[0].subsystem, "push");
  EXPECT_EQ(lines[0].level, LogLevel::warning);
  EXPECT_EQ(lines[0].category, LoggerCategory::network);
}

TEST(ModuleLogger, EveryFormUsesItsLevel) {
  auto sink = CaptureLogSink::install();
  ModuleLogger logger(ModuleName::cdp, {});
  logger.d(LoggerCategory::module, "1");
  logger.debugWithCategory(LoggerCategory::module, "2");
  logger.w(LoggerCategory::module, "3");
  logger.warningWithCategory(LoggerCategory::module, "4");
  logger.e(LoggerCategory::module, "5");
  logger.errorWithCategory(LoggerCategory::module, "6");
  logger.f(LoggerCategory::module, "7");
  logger.faultWithCategory(LoggerCategory::module, "8");
  const std::vector<LogLevel> expected{LogLevel::debug,   LogLevel::debug, LogLevel::warning,
                                       LogLevel::warning, LogLevel::error, LogLevel::error,
                                       LogLevel::fault,   LogLevel::fault};
  const auto lines = sink->lines();
  ASSERT_EQ(lines.size(), expected.size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(lines[i].level, expected[i]) << i;
    EXPECT_EQ(lines[i].subsystem, "cdp");
  }
}

TEST(ModuleLogger, SharedLevelNoneSilencesModules) {
  auto sink = std::make_shared<CaptureLogSink>();
  VORNSdk::setLogger(LogLevel::none, sink);
  ModuleLogger logger(ModuleName::push, {"x"});
  logger.f(LoggerCategory::module, "x");
  EXPECT_TRUE(sink->lines().empty());
}

TEST(ModuleLogger, SharedFiltersApplyToModuleLines) {
  auto sink = std::make_shared<CaptureLogSink>();
  VORNSdk::setLogger(LogLevel::debug, sink, {LoggerCategory::network});
  ModuleLogger logger(ModuleName::push, {});
  logger.d(LoggerCategory::auth, "dropped");
  logger.d(LoggerCategory::network, "kept");
  EXPECT_EQ(sink->messages(), (std::vector<std::string>{"kept"}));
}

TEST(Redaction, BothCasesOfAWordAreReplaced) {
  EXPECT_EQ(redactedThroughModule({"Word"}, "WORD then word"), "[REDACTED] then [REDACTED]");
}

TEST(Redaction, EarlierValueWinsOnOverlap) {
  EXPECT_EQ(redactedThroughModule({"abc", "abcdef"}, "abcdef"), "[REDACTED]def");
  EXPECT_EQ(redactedThroughModule({"abcdef", "abc"}, "abcdef"), "[REDACTED]");
}

TEST(Redaction, MarkerIsRedactedAgainByLaterValues) {
  EXPECT_EQ(redactedThroughModule({"secret", "act"}, "secret"), "[RED[REDACTED]ED]");
}

TEST(Redaction, MatchesPlainTextNotPatterns) {
  EXPECT_EQ(redactedThroughModule({"a.c"}, "abc a.c"), "abc [REDACTED]");
  EXPECT_EQ(redactedThroughModule({""}, "kept"), "kept");
  EXPECT_EQ(redactedThroughModule({"aa"}, "aaa"), "[REDACTED]a");
}

TEST(Redaction, NonAsciiIsCaseInsensitive) {
  EXPECT_EQ(redactedThroughModule({"straße"}, "STRASSE Straße STRAẞE"),
            "STRASSE [REDACTED] [REDACTED]");
  EXPECT_EQ(redactedThroughModule({"ÄPFEL"}, "äpfel und Äpfel"), "[REDACTED] und [REDACTED]");
  EXPECT_EQ(redactedThroughModule({"σοφία"}, "ΣΟΦΊΑ"), "[REDACTED]");
  EXPECT_EQ(redactedThroughModule({"привет"}, "ПРИВЕТ мир"), "[REDACTED] мир");
}

TEST(Redaction, MalformedUtf8IsKeptAndStillSearched) {
  const std::string message = std::string("a\xff") + "SECRET\xfe";
  EXPECT_EQ(redactedThroughModule({"secret"}, message), std::string("a\xff[REDACTED]\xfe"));
}

TEST(Redaction, ModuleListThenSharedList) {
  auto sink = CaptureLogSink::install();
  VORNSdkLogger::shared().setRedactedValues({"RED"});
  ModuleLogger logger(ModuleName::cdp, {"pin"});
  logger.d(LoggerCategory::module, "pin red");
  // The shared pass also sees the module pass's marker.
  EXPECT_EQ(sink->messages(), (std::vector<std::string>{"[[REDACTED]ACTED] [REDACTED]"}));
}

TEST(ModuleLogger, ListIsReplaceable) {
  auto sink = CaptureLogSink::install();
  ModuleLogger logger(ModuleName::cdp, {"one"});
  logger.set({"two"});
  EXPECT_EQ(logger.redactedValues(), (std::vector<std::string>{"two"}));
  logger.d(LoggerCategory::module, "one two");
  logger.setRedactedValues({});
  logger.d(LoggerCategory::module, "one two");
  EXPECT_EQ(sink->messages(), (std::vector<std::string>{"one [REDACTED]", "one two"}));
}

}  // namespace
}  // namespace vorn

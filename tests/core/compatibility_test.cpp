#include "vorn/core/Compatibility.hpp"

#include <gtest/gtest.h>

#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

TEST(Compatibility, CdpRange) {
  const auto range = Compatibility::create("2.0.2", "2.9.9");
  ASSERT_NE(range, nullptr);
  EXPECT_EQ(range->min(), "2.0.2");
  EXPECT_EQ(range->max(), "2.9.9");
  EXPECT_EQ(range->semanticsCount(), 3u);
  for (const char* accepted : {"2.0.2", "2.5.0", "2.9.9"})
    EXPECT_TRUE(range->isCompatible(accepted)) << accepted;
  for (const char* refused : {"2.0.1", "3.0.0", "2.10", "2.0", "", "2.5.0.0"})
    EXPECT_FALSE(range->isCompatible(refused)) << refused;
}

TEST(Compatibility, PushRangeOrdersDigitRunsByValue) {
  const auto range = Compatibility::create("8.1.0", "8.9.9");
  ASSERT_NE(range, nullptr);
  EXPECT_TRUE(range->isCompatible("8.1.0"));
  EXPECT_EQ(Compatibility::partCount("8.10.0"), range->semanticsCount());
  EXPECT_FALSE(range->isCompatible("8.10.0"));  // 10 comes after 9
}

TEST(Compatibility, NumericOrderingAcceptsWhatTextOrderingWouldRefuse) {
  const auto range = Compatibility::create("1.2.3", "1.10.0");
  ASSERT_NE(range, nullptr);
  EXPECT_TRUE(range->isCompatible("1.9.0"));
  EXPECT_TRUE(range->isCompatible("1.09.0"));  // leading zeros do not change the number
  EXPECT_FALSE(range->isCompatible("1.2.2"));
  EXPECT_FALSE(range->isCompatible("1.11.0"));
}

TEST(Compatibility, InconsistentSemanticsFailWithALine) {
  auto sink = testing::CaptureLogSink::install();
  EXPECT_EQ(Compatibility::create("1.0", "1.0.0"), nullptr);
  ASSERT_EQ(sink->lines().size(), 1u);
  EXPECT_EQ(sink->lines()[0].message,
            "Creating compatibility failed. Your min and max have inconsistent semantics.");
  EXPECT_EQ(sink->lines()[0].level, LogLevel::debug);
  EXPECT_EQ(sink->lines()[0].category, LoggerCategory::sdk);
}

TEST(Compatibility, PartsLongerThanTwoCharactersFailSilently) {
  auto sink = testing::CaptureLogSink::install();
  EXPECT_EQ(Compatibility::create("1.0.100", "1.0.200"), nullptr);
  EXPECT_EQ(Compatibility::create("10.100.0", "10.10.0"), nullptr);
  EXPECT_EQ(Compatibility::create("1.0.0", "1.0.abc"), nullptr);
  EXPECT_NE(Compatibility::create("99.99.99", "99.99.99"), nullptr);
  EXPECT_NE(Compatibility::create("1.é", "1.éé"), nullptr);  // characters, not bytes
  EXPECT_TRUE(sink->lines().empty());
}

TEST(Compatibility, PartsAreWhatLiesBetweenDots) {
  EXPECT_EQ(Compatibility::partCount(""), 1u);
  EXPECT_EQ(Compatibility::partCount("1..0"), 3u);
  EXPECT_EQ(Compatibility::partCount("1.0."), 3u);
}

}  // namespace
}  // namespace vorn

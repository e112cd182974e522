// Consent from text: case does not matter, anything unknown is `pending` with a warning.
#include <gtest/gtest.h>

#include "vorn/identity/Consent.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

TEST(ConsentTest, KnownTextsInAnyCase) {
  auto sink = testing::CaptureLogSink::install();
  EXPECT_EQ(consentFrom("opt_in"), Consent::optIn);
  EXPECT_EQ(consentFrom("OPT_OUT"), Consent::optOut);
  EXPECT_EQ(consentFrom("Pending"), Consent::pending);
  EXPECT_EQ(consentFrom("nOnE"), Consent::none);
  EXPECT_TRUE(sink->lines().empty());
  for (const Consent consent : {Consent::optIn, Consent::optOut, Consent::pending, Consent::none})
    EXPECT_EQ(consentFrom(rawValue(consent)), consent);
  EXPECT_EQ(rawValue(Consent::optOut), "opt_out");
}

TEST(ConsentTest, UnknownTextIsPendingWithAWarning) {
  auto sink = testing::CaptureLogSink::install();
  for (const std::string_view text : {"yes", "", "opt-in", " none", "opt_in\n"})
    EXPECT_EQ(consentFrom(text), Consent::pending) << text;
  const auto lines = sink->lines();
  ASSERT_EQ(lines.size(), 5u);
  for (const auto& line : lines) {
    EXPECT_EQ(line.message, "Invalid consent parameter. Defaulting to pending");
    EXPECT_EQ(line.level, LogLevel::warning);
    EXPECT_EQ(line.category, LoggerCategory::consent);
  }
}

}  // namespace
}  // namespace vorn

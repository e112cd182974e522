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
  EXPECT_EQ(rawValue(Consent::optOut), "opt_out");
  EXPECT_TRUE(sink->lines().empty());
}

TEST(ConsentTest, UnknownTextIsPendingWithAWarning) {
  auto sink = testing::CaptureLogSink::install();
  for (const std::string_view text : {"yes", "", "opt-in", " none"})
    EXPECT_EQ(consentFrom(text), Consent::pending) << text;
  ASSERT_EQ(sink->count("Invalid consent parameter. Defaulting to pending"), 4u);
  EXPECT_EQ(sink->lines()[0].level, LogLevel::warning);
  EXPECT_EQ(sink->lines()[0].category, LoggerCategory::consent);
}

}  // namespace
}  // namespace vorn

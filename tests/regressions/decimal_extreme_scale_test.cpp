// A decimal built with a scale far outside the parsed range, such as Decimal(1, INT32_MIN),
// used to make comparison and printing pad billions of digits inside noexcept code.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "vorn/base/Decimal.hpp"

namespace vorn {
namespace {

constexpr std::int32_t kMinScale = INT32_MIN;
constexpr std::int32_t kMaxScale = INT32_MAX;
// The documented limit of a decimal's scale in either direction.
constexpr std::int32_t kSupported = 128;

TEST(DecimalExtremeScale, SaturatesToTheSupportedRange) {
  EXPECT_EQ(Decimal(1, kMinScale).scale(), -kSupported);
  EXPECT_EQ(Decimal(1, kMaxScale).scale(), kSupported);
  EXPECT_EQ(Decimal(7, 12).scale(), 12);
}

TEST(DecimalExtremeScale, ComparesWithOrdinaryDecimals) {
  const Decimal huge(1, kMinScale);
  const Decimal tiny(1, kMaxScale);
  const Decimal ordinary = *Decimal::parse("9223372036854775807");
  EXPECT_GT(huge, ordinary);
  EXPECT_LT(tiny, *Decimal::parse("0.000001"));
  EXPECT_GT(tiny, Decimal());
  EXPECT_LT(Decimal(-1, kMinScale), Decimal(INT64_MIN, 0));
  EXPECT_GT(Decimal(-1, kMaxScale), Decimal(-1, 0));
  EXPECT_NE(huge, tiny);
  EXPECT_EQ(huge, Decimal(1, -kSupported));
  EXPECT_EQ(Decimal(0, kMinScale), Decimal(0, kMaxScale));
}

TEST(DecimalExtremeScale, ComparesAcrossTheWholeRangeWithoutPadding) {
  EXPECT_EQ(Decimal(INT64_MAX, 128), Decimal(INT64_MAX, 128));
  EXPECT_LT(Decimal(INT64_MAX, 128), Decimal(1, 109));
  EXPECT_LT(Decimal(INT64_MIN, -128), Decimal(INT64_MIN, -127));
  EXPECT_EQ(Decimal(1000, 3), Decimal(1, 0));
  EXPECT_LT(Decimal(999, 3), Decimal(1, 0));
  EXPECT_GT(Decimal(1001, 3), Decimal(1, 0));
}

TEST(DecimalExtremeScale, PrintsWithinTheSupportedRange) {
  EXPECT_EQ(Decimal(1, kMinScale).toString(), "1" + std::string(128, '0'));
  EXPECT_EQ(Decimal(-1, kMaxScale).toString(), "-0." + std::string(127, '0') + "1");
  EXPECT_EQ(Decimal(0, kMinScale).toString(), "0");
}

}  // namespace
}  // namespace vorn

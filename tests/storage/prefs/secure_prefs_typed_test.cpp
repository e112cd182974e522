#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include "storage/secure_prefs_support.hpp"
#include "vorn/storage/prefs/SecurePrefs.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace vorn {
namespace {

class SecurePrefsTyped : public ::testing::Test {
 protected:
  std::shared_ptr<test::TableDefaults> store = std::make_shared<test::TableDefaults>();
  SecurePrefs prefs{store->suite("com.quorvantis.tessarine_A_R_push"), test::managerWithKeyByte(7)};

  std::string textOfDouble(double value) {
    prefs.setDouble(value, "d");
    return prefs.stringFor("d").value_or("<absent>");
  }
  std::string textOfFloat(float value) {
    prefs.setFloat(value, "f");
    return prefs.stringFor("f").value_or("<absent>");
  }
};

TEST_F(SecurePrefsTyped, BoolIsStoredAsTextAndIsNoInteger) {
  prefs.setBool(true, "flag");
  EXPECT_EQ(prefs.stringFor("flag"), "true");
  EXPECT_EQ(prefs.boolFor("flag"), true);
  EXPECT_EQ(prefs.intFor("flag"), std::nullopt);
  prefs.setBool(false, "flag");
  EXPECT_EQ(prefs.stringFor("flag"), "false");
  EXPECT_EQ(prefs.boolFor("flag"), false);
}

TEST_F(SecurePrefsTyped, BoolReadsOnlyTheExactTexts) {
  for (const char* text : {"TRUE", "True", "1", "yes", " true", "false ", ""}) {
    prefs.setString(text, "b");
    EXPECT_EQ(prefs.boolFor("b"), std::nullopt) << text;
  }
  EXPECT_EQ(prefs.boolFor("absent"), std::nullopt);
}

TEST_F(SecurePrefsTyped, IntIsDecimalTextAndIsNoBool) {
  prefs.setInt(-5, "n");
  EXPECT_EQ(prefs.stringFor("n"), "-5");
  EXPECT_EQ(prefs.intFor("n"), -5);
  EXPECT_EQ(prefs.boolFor("n"), std::nullopt);
  for (std::int64_t v : {std::int64_t{0}, std::numeric_limits<std::int64_t>::min(),
                         std::numeric_limits<std::int64_t>::max()}) {
    prefs.setInt(v, "n");
    EXPECT_EQ(prefs.stringFor("n"), std::to_string(v));
    EXPECT_EQ(prefs.intFor("n"), v);
  }
}

TEST_F(SecurePrefsTyped, IntParsingTakesTheWholeTextOrNothing) {
  prefs.setString("+7", "n");
  EXPECT_EQ(prefs.intFor("n"), 7);
  for (const char* text : {"", "+", "-", "+-7", " 7", "7 ", "7.0", "0x10", "1e3",
                           "9223372036854775808", "-9223372036854775809", "seven"}) {
    prefs.setString(text, "n");
    EXPECT_EQ(prefs.intFor("n"), std::nullopt) << text;
  }
  EXPECT_EQ(prefs.intFor("absent"), std::nullopt);
}

TEST_F(SecurePrefsTyped, DoubleTextIsShortestRoundTrip) {
  EXPECT_EQ(textOfDouble(0.1), "0.1");
  EXPECT_EQ(textOfDouble(100.0), "100.0");
  EXPECT_EQ(textOfDouble(-2.5), "-2.5");
  EXPECT_EQ(textOfDouble(0.0), "0.0");
  EXPECT_EQ(textOfDouble(-0.0), "-0.0");
  EXPECT_EQ(textOfDouble(1.0 / 3.0), "0.3333333333333333");
  EXPECT_EQ(textOfDouble(0.0001), "0.0001");
  EXPECT_EQ(textOfDouble(0.00001), "1e-05");
  EXPECT_EQ(textOfDouble(1.5e-7), "1.5e-07");
  EXPECT_EQ(textOfDouble(1e16), "1e+16");
  EXPECT_EQ(textOfDouble(12345678901234.5), "12345678901234.5");
  EXPECT_EQ(textOfDouble(std::ldexp(1.0, 53)), "9007199254740992.0");
  EXPECT_EQ(textOfDouble(std::ldexp(1.0, 53) + 2), "9.007199254740994e+15");
  EXPECT_EQ(textOfDouble(1.7976931348623157e308), "1.7976931348623157e+308");
  EXPECT_EQ(textOfDouble(std::numeric_limits<double>::infinity()), "inf");
  EXPECT_EQ(textOfDouble(-std::numeric_limits<double>::infinity()), "-inf");
  EXPECT_EQ(textOfDouble(std::numeric_limits<double>::quiet_NaN()), "nan");
}

TEST_F(SecurePrefsTyped, FloatTextIsShortestForItsOwnPrecision) {
  EXPECT_EQ(textOfFloat(0.1f), "0.1");
  EXPECT_EQ(textOfFloat(3.0f), "3.0");
  EXPECT_EQ(textOfFloat(16777216.0f), "16777216.0");
  EXPECT_EQ(textOfFloat(33554432.0f), "3.3554432e+07");
  EXPECT_EQ(textOfFloat(1e8f), "1e+08");
  EXPECT_EQ(textOfFloat(std::numeric_limits<float>::max()), "3.4028235e+38");
  EXPECT_EQ(textOfFloat(1e-5f), "1e-05");
}

TEST_F(SecurePrefsTyped, FloatingValuesRoundTrip) {
  for (double v : {0.1, -123.456, 1e-300, 6.02214076e23, std::ldexp(1.0, -1074)}) {
    prefs.setDouble(v, "d");
    EXPECT_EQ(prefs.doubleFor("d"), v);
  }
  for (float v : {0.1f, -1.5f, 3.4028235e38f, 1e-45f}) {
    prefs.setFloat(v, "f");
    EXPECT_EQ(prefs.floatFor("f"), v);
  }
  prefs.setDouble(std::numeric_limits<double>::quiet_NaN(), "d");
  ASSERT_TRUE(prefs.doubleFor("d").has_value());
  EXPECT_TRUE(std::isnan(*prefs.doubleFor("d")));
  prefs.setInt(42, "n");
  EXPECT_EQ(prefs.doubleFor("n"), 42.0);
  EXPECT_EQ(prefs.floatFor("n"), 42.0f);
}

TEST_F(SecurePrefsTyped, NumberParsingTakesTheWholeTextOrNothing) {
  for (const char* text : {"", " 1.5", "1.5 ", "1,5", "abc", "true", "1.5x"}) {
    prefs.setString(text, "d");
    EXPECT_EQ(prefs.doubleFor("d"), std::nullopt) << text;
    EXPECT_EQ(prefs.floatFor("d"), std::nullopt) << text;
  }
  EXPECT_EQ(prefs.doubleFor("absent"), std::nullopt);
  EXPECT_EQ(prefs.floatFor("absent"), std::nullopt);
}

TEST_F(SecurePrefsTyped, AbsentKeysGiveNoValueSilently) {
  auto sink = testing::CaptureLogSink::install();
  EXPECT_EQ(prefs.stringFor("x"), std::nullopt);
  EXPECT_EQ(prefs.intFor("x"), std::nullopt);
  EXPECT_EQ(prefs.boolFor("x"), std::nullopt);
  EXPECT_EQ(prefs.floatFor("x"), std::nullopt);
  EXPECT_EQ(prefs.doubleFor("x"), std::nullopt);
  EXPECT_TRUE(sink->lines().empty());
}

}  // namespace
}  // namespace vorn

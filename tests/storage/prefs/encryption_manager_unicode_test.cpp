#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "vorn/storage/crypto/UnicodeEncoding.hpp"

namespace vorn {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(UnicodeEncoding, EmptyTextIsTheByteOrderMarkAlone) {
  EXPECT_EQ(encodeUnicode(""), (Bytes{0xFF, 0xFE}));
}

TEST(UnicodeEncoding, AsciiBecomesLittleEndianUnitsAfterTheMark) {
  EXPECT_EQ(encodeUnicode("Ab1"), (Bytes{0xFF, 0xFE, 'A', 0, 'b', 0, '1', 0}));
  EXPECT_EQ(encodeUnicode("push").value().size(), 2u + 2u * 4u);
}

TEST(UnicodeEncoding, BmpAndSupplementaryCharacters) {
  // U+00E9, U+20AC, then U+1F600 as the surrogate pair D83D DE00.
  EXPECT_EQ(encodeUnicode("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"),
            (Bytes{0xFF, 0xFE, 0xE9, 0x00, 0xAC, 0x20, 0x3D, 0xD8, 0x00, 0xDE}));
}

TEST(UnicodeEncoding, EmbeddedNulIsKept) {
  EXPECT_EQ(encodeUnicode(std::string_view("a\0b", 3)), (Bytes{0xFF, 0xFE, 'a', 0, 0, 0, 'b', 0}));
}

TEST(UnicodeEncoding, InvalidUtf8HasNoEncoding) {
  EXPECT_FALSE(encodeUnicode("\xFF").has_value());
  EXPECT_FALSE(encodeUnicode("abc\xC3").has_value());           // truncated sequence
  EXPECT_FALSE(encodeUnicode("\xC0\xAF").has_value());          // overlong '/'
  EXPECT_FALSE(encodeUnicode("\xED\xA0\x80").has_value());      // encoded surrogate
  EXPECT_FALSE(encodeUnicode("\xF4\x90\x80\x80").has_value());  // above U+10FFFF
}

TEST(UnicodeEncoding, DecodeRoundTripsEveryPlane) {
  const std::string text = "x\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xF4\x8F\xBF\xBFz";
  EXPECT_EQ(decodeUnicode(encodeUnicode(text).value()), text);
}

TEST(UnicodeEncoding, DecodeHonoursEitherMarkAndDefaultsToLittleEndian) {
  EXPECT_EQ(decodeUnicode(Bytes{0xFE, 0xFF, 0x00, 'h', 0x00, 'i'}), "hi");
  EXPECT_EQ(decodeUnicode(Bytes{0xFF, 0xFE, 'h', 0x00, 'i', 0x00}), "hi");
  EXPECT_EQ(decodeUnicode(Bytes{'h', 0x00, 'i', 0x00}), "hi");
}

TEST(UnicodeEncoding, DecodeOfEmptyAndMarkOnlyIsEmptyText) {
  EXPECT_EQ(decodeUnicode(Bytes{}), "");
  EXPECT_EQ(decodeUnicode(Bytes{0xFF, 0xFE}), "");
}

TEST(UnicodeEncoding, MalformedUtf16HasNoText) {
  EXPECT_FALSE(decodeUnicode(Bytes{0xFF, 0xFE, 'a'}).has_value());                 // odd length
  EXPECT_FALSE(decodeUnicode(Bytes{0xFF, 0xFE, 0x3D, 0xD8}).has_value());          // lone high
  EXPECT_FALSE(decodeUnicode(Bytes{0xFF, 0xFE, 0x00, 0xDE, 'a', 0}).has_value());  // lone low
  EXPECT_FALSE(decodeUnicode(Bytes{0xFF, 0xFE, 0x3D, 0xD8, 'a', 0}).has_value());  // high+BMP
}

}  // namespace
}  // namespace vorn

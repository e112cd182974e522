#include <gtest/gtest.h>

#include "vorn/storage/crypto/EntityId.hpp"
#include "vorn/storage/crypto/StringUtilities.hpp"

namespace vorn {
namespace {

TEST(CryptoText, TrimRemovesBlanksButKeepsLineBreaks) {
  EXPECT_EQ(trim("  \t hello world \t "), "hello world");
  EXPECT_EQ(trim("\nhello\n"), "\nhello\n");
  EXPECT_EQ(trim("\u00a0\u3000x\u2003"), "x");  // no-break, ideographic and em spaces
  EXPECT_EQ(trim("   "), "");
  EXPECT_EQ(trim("caf\u00e9 "), "caf\u00e9");
}

TEST(CryptoText, RedactionKeepsThePrefixAndTheLength) {
  EXPECT_EQ(redactedWithPrefix("abcdefgh", 4), "abcd----");
  EXPECT_EQ(redactedWithPrefix("abc", 4), "abc");
  EXPECT_EQ(redacted("abc"), "---");
  EXPECT_EQ(redactedWithPrefix("\u00e9t\u00e9", 1), "\u00e9--");
  // A character outside the basic plane counts two, as on the host.
  EXPECT_EQ(redacted("a\U0001F600"), "---");
}

TEST(CryptoText, UrlEncodingEscapesExactlyTheListedCharacters) {
  EXPECT_EQ(stringByURLEncoding(" \"#%/:<>?@[\\]^`{|}&=+"),
            "%20%22%23%25%2F%3A%3C%3E%3F%40%5B%5C%5D%5E%60%7B%7C%7D%26%3D%2B");
  EXPECT_EQ(stringByURLEncoding("a-b_c.d~e!*'();$,\u00e9"), "a-b_c.d~e!*'();$,\u00e9");
}

TEST(CryptoText, OrdinaryHelpers) {
  EXPECT_TRUE(isEmpty(std::nullopt));
  EXPECT_TRUE(isEmpty(std::string_view()));
  EXPECT_FALSE(isEmpty(std::string_view(" ")));
  EXPECT_TRUE(isEmptyOrWhitespaceAndNewlines(" \n\t\u2028"));
  EXPECT_FALSE(isEmptyOrWhitespaceAndNewlines(" x "));
  EXPECT_EQ(removeWhitespaces(" a b\nc\u00a0d "), "abcd");
  EXPECT_EQ(stringByStrippingHTML("<p>Hi <b>there</b></p> 1 < 2"), "Hi there 1 < 2");
  EXPECT_EQ(stringWithTitleCharacter("\u00e9cole"), "\u00c9cole");
  const auto query = queryStringComponents("a=1&b=x%20y&c&a=2");
  EXPECT_EQ(query.at("a"), "2");
  EXPECT_EQ(query.at("b"), "x y");
  EXPECT_EQ(query.at("c"), "");
  EXPECT_EQ(escapeXMLCharacter("<a href=\"x\">&'"), "&lt;a href=&quot;x&quot;&gt;&amp;&apos;");
  EXPECT_EQ(unescapeXMLCharacter("&lt;a&gt; &amp;lt; &quot;&apos;"), "<a> &lt; \"'");
}

TEST(CryptoEntityId, AppendsCaseCheckCharacters) {
  EXPECT_EQ(entityId18("001A0000006Vm9r"), "001A0000006Vm9rIAC");
  EXPECT_EQ(entityId18("ABCDEABCDEABCDE"), "ABCDEABCDEABCDE555");
  EXPECT_EQ(entityId18("abcdeabcdeabcde"), "abcdeabcdeabcdeAAA");
  EXPECT_EQ(entityId18("001A0000006Vm9rIAC"), "001A0000006Vm9rIAC");
}

TEST(CryptoEntityId, RefusesOtherLengthsAndCharacters) {
  EXPECT_FALSE(entityId18("001A0000006Vm9rI"));  // 16
  EXPECT_FALSE(entityId18("001A0000006Vm9"));    // 14
  EXPECT_FALSE(entityId18("001A0000006Vm9-"));
  EXPECT_FALSE(entityId18("001A0000006Vm\u00e9"));  // 15 bytes, not 15 letters
  EXPECT_FALSE(entityId18(""));
}

TEST(CryptoEntityId, EqualityComparesEighteenCharacterForms) {
  EXPECT_TRUE(isEqualToEntityId("001A0000006Vm9r", "001A0000006Vm9rIAC"));
  EXPECT_FALSE(isEqualToEntityId("001A0000006Vm9r", "001a0000006Vm9r"));
  EXPECT_FALSE(isEqualToEntityId("bad", "bad"));
}

}  // namespace
}  // namespace vorn

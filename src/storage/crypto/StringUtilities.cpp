#include "vorn/storage/crypto/StringUtilities.hpp"

#include <utf8proc.h>

#include <algorithm>
#include <utility>

#include "base/Text.hpp"

namespace vorn {
namespace {

// Decodes the code point at `i`; malformed bytes come back one at a time as themselves with
// `valid` false, so no input is ever dropped.
struct CodePoint {
  char32_t value = 0;
  std::size_t length = 1;
  bool valid = false;
};

CodePoint decodeAt(std::string_view text, std::size_t i) {
  utf8proc_int32_t cp = 0;
  const utf8proc_ssize_t length =
      utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()) + i,
                       static_cast<utf8proc_ssize_t>(text.size() - i), &cp);
  if (length <= 0)
    return {static_cast<unsigned char>(text[i]), 1, false};
  return {static_cast<char32_t>(cp), static_cast<std::size_t>(length), true};
}

// White space without line breaks: tab and the space separators.
bool isWhitespace(const CodePoint& cp) {
  return cp.valid &&
         (cp.value == U'\t' ||
          utf8proc_category(static_cast<utf8proc_int32_t>(cp.value)) == UTF8PROC_CATEGORY_ZS);
}

std::size_t utf16Length(const CodePoint& cp) {
  return cp.valid && cp.value > 0xFFFF ? 2 : 1;
}

void appendUtf8(std::string& out, char32_t value) {
  utf8proc_uint8_t encoded[4];
  const utf8proc_ssize_t written =
      utf8proc_encode_char(static_cast<utf8proc_int32_t>(value), encoded);
  out.append(reinterpret_cast<const char*>(encoded), static_cast<std::size_t>(written));
}

int hexValue(char c) {
  if (c >= '0' && c <= '9')
    return c - '0';
  if (c >= 'a' && c <= 'f')
    return c - 'a' + 10;
  if (c >= 'A' && c <= 'F')
    return c - 'A' + 10;
  return -1;
}

std::string percentDecoded(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const int high = i + 2 < text.size() && text[i] == '%' ? hexValue(text[i + 1]) : -1;
    const int low = high >= 0 ? hexValue(text[i + 2]) : -1;
    if (low >= 0) {
      out.push_back(static_cast<char>(high * 16 + low));
      i += 2;
    } else {
      out.push_back(text[i] == '+' ? ' ' : text[i]);
    }
  }
  return out;
}

}  // namespace

std::string trim(std::string_view text) {
  std::size_t begin = 0;
  while (begin < text.size()) {
    const CodePoint cp = decodeAt(text, begin);
    if (!isWhitespace(cp))
      break;
    begin += cp.length;
  }
  // Scan forward so multi-byte code points are never split; remember the last non-blank end.
  std::size_t end = begin;
  for (std::size_t i = begin; i < text.size();) {
    const CodePoint cp = decodeAt(text, i);
    i += cp.length;
    if (!isWhitespace(cp))
      end = i;
  }
  return std::string(text.substr(begin, end - begin));
}

std::string redactedWithPrefix(std::string_view text, std::size_t count) {
  std::string out;
  out.reserve(text.size());
  std::size_t units = 0;
  for (std::size_t i = 0; i < text.size();) {
    const CodePoint cp = decodeAt(text, i);
    const std::size_t length = utf16Length(cp);
    if (units + length <= count)
      out.append(text.substr(i, cp.length));
    else
      out.append(length, '-');
    units += length;
    i += cp.length;
  }
  return out;
}

std::string redacted(std::string_view text) {
  return redactedWithPrefix(text, 0);
}

std::string stringByURLEncoding(std::string_view text) {
  static constexpr std::string_view kEscaped = " \"#%/:<>?@[\\]^`{|}&=+";
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    if (kEscaped.find(c) == std::string_view::npos) {
      out.push_back(c);
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    out.push_back('%');
    out.push_back(kDigits[byte >> 4]);
    out.push_back(kDigits[byte & 0x0F]);
  }
  return out;
}

bool isEmpty(const std::optional<std::string_view>& text) {
  return !text || text->empty();
}

bool isEmptyOrWhitespaceAndNewlines(std::string_view text) {
  return detail::trimmed(text).empty();
}

std::string removeWhitespaces(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const CodePoint cp = decodeAt(text, i);
    if (!cp.valid || !detail::isWhitespaceOrNewline(cp.value))
      out.append(text.substr(i, cp.length));
    i += cp.length;
  }
  return out;
}

std::string stringByStrippingHTML(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t close = text[i] == '<' ? text.find('>', i) : std::string_view::npos;
    if (close == std::string_view::npos)
      out.push_back(text[i]);
    else
      i = close;
  }
  return out;
}

std::string stringWithTitleCharacter(std::string_view text) {
  if (text.empty())
    return {};
  const CodePoint first = decodeAt(text, 0);
  if (!first.valid)
    return std::string(text);
  std::string out;
  appendUtf8(out,
             static_cast<char32_t>(utf8proc_toupper(static_cast<utf8proc_int32_t>(first.value))));
  out.append(text.substr(first.length));
  return out;
}

std::map<std::string, std::string> queryStringComponents(std::string_view text) {
  std::map<std::string, std::string> out;
  while (!text.empty()) {
    const std::size_t amp = text.find('&');
    const std::string_view pair = text.substr(0, amp);
    text = amp == std::string_view::npos ? std::string_view() : text.substr(amp + 1);
    if (pair.empty())
      continue;
    const std::size_t eq = pair.find('=');
    const std::string_view value =
        eq == std::string_view::npos ? std::string_view() : pair.substr(eq + 1);
    out[percentDecoded(pair.substr(0, eq))] = percentDecoded(value);
  }
  return out;
}

std::string escapeXMLCharacter(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&apos;";
        break;
      default:
        out.push_back(c);
    }
  }
  return out;
}

std::string unescapeXMLCharacter(std::string_view text) {
  static constexpr std::pair<std::string_view, char> kEntities[] = {
      {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};
  std::string out;
  out.reserve(text.size());
  // One pass, so "&amp;lt;" becomes "&lt;" and not "<".
  for (std::size_t i = 0; i < text.size();) {
    const auto* match =
        std::find_if(std::begin(kEntities), std::end(kEntities),
                     [&](const auto& e) { return text.substr(i).starts_with(e.first); });
    if (match == std::end(kEntities)) {
      out.push_back(text[i++]);
    } else {
      out.push_back(match->second);
      i += match->first.size();
    }
  }
  return out;
}

}  // namespace vorn

#include "base/Text.hpp"

#include <utf8proc.h>

namespace vorn::detail {
namespace {

template <class Map>
std::string mapCodePoints(std::string_view text, Map map) {
  std::string out;
  out.reserve(text.size());
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  std::size_t i = 0;
  while (i < text.size()) {
    utf8proc_int32_t cp = 0;
    const utf8proc_ssize_t length =
        utf8proc_iterate(bytes + i, static_cast<utf8proc_ssize_t>(text.size() - i), &cp);
    if (length <= 0) {
      out.push_back(text[i++]);
      continue;
    }
    utf8proc_uint8_t encoded[4];
    const utf8proc_ssize_t written = utf8proc_encode_char(map(cp), encoded);
    out.append(reinterpret_cast<const char*>(encoded), static_cast<std::size_t>(written));
    i += static_cast<std::size_t>(length);
  }
  return out;
}

// Length of the code point starting at `i`, or 0 when the bytes there are malformed.
std::size_t decodeAt(std::string_view text, std::size_t i, char32_t& codePoint) {
  utf8proc_int32_t cp = 0;
  const utf8proc_ssize_t length =
      utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()) + i,
                       static_cast<utf8proc_ssize_t>(text.size() - i), &cp);
  if (length <= 0)
    return 0;
  codePoint = static_cast<char32_t>(cp);
  return static_cast<std::size_t>(length);
}

// Start of the code point that ends just before `end`: back over continuation bytes.
std::size_t previousStart(std::string_view text, std::size_t end) {
  std::size_t i = end - 1;
  while (i > 0 && end - i < 4 && (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80)
    --i;
  return i;
}

}  // namespace

bool isWhitespaceOrNewline(char32_t codePoint) noexcept {
  if ((codePoint >= 0x09 && codePoint <= 0x0D) || codePoint == 0x85)
    return true;
  switch (utf8proc_category(static_cast<utf8proc_int32_t>(codePoint))) {
    case UTF8PROC_CATEGORY_ZS:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
      return true;
    default:
      return false;
  }
}

std::string trimmed(std::string_view text) {
  std::size_t begin = 0;
  while (begin < text.size()) {
    char32_t cp = 0;
    const std::size_t length = decodeAt(text, begin, cp);
    if (length == 0 || !isWhitespaceOrNewline(cp))
      break;
    begin += length;
  }
  std::size_t end = text.size();
  while (end > begin) {
    const std::size_t start = previousStart(text, end);
    char32_t cp = 0;
    // A code point counts only when it decodes cleanly and fills exactly [start, end).
    if (start < begin || decodeAt(text, start, cp) != end - start || !isWhitespaceOrNewline(cp))
      break;
    end = start;
  }
  return std::string(text.substr(begin, end - begin));
}

std::string lowercased(std::string_view text) {
  return mapCodePoints(text, utf8proc_tolower);
}

std::string uppercased(std::string_view text) {
  return mapCodePoints(text, utf8proc_toupper);
}

}  // namespace vorn::detail

#include "vorn/storage/crypto/UnicodeEncoding.hpp"

#include <utf8.h>

namespace vorn {

namespace {

constexpr std::uint8_t kLittleEndianMark[2] = {0xFF, 0xFE};

bool isHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool isLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

void appendUnit(std::vector<std::uint8_t>& out, std::uint16_t unit) {
  out.push_back(static_cast<std::uint8_t>(unit & 0xFF));
  out.push_back(static_cast<std::uint8_t>(unit >> 8));
}

void appendUtf8(std::string& out, char32_t codePoint) {
  if (codePoint < 0x80) {
    out.push_back(static_cast<char>(codePoint));
  } else if (codePoint < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (codePoint >> 6)));
    out.push_back(static_cast<char>(0x80 | (codePoint & 0x3F)));
  } else if (codePoint < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (codePoint >> 12)));
    out.push_back(static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (codePoint & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (codePoint >> 18)));
    out.push_back(static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (codePoint & 0x3F)));
  }
}

}  // namespace

std::optional<std::vector<std::uint8_t>> encodeUnicode(std::string_view utf8) {
  // utf8::is_valid also refuses surrogate code points and overlong forms, which UTF-16
  // could not carry back unchanged.
  if (!utf8::is_valid(utf8.begin(), utf8.end())) {
    return std::nullopt;
  }
  std::vector<std::uint8_t> out;
  out.reserve(2 + utf8.size() * 2);
  out.insert(out.end(), std::begin(kLittleEndianMark), std::end(kLittleEndianMark));
  for (auto it = utf8.begin(); it != utf8.end();) {
    const char32_t codePoint = utf8::unchecked::next(it);
    if (codePoint < 0x10000) {
      appendUnit(out, static_cast<std::uint16_t>(codePoint));
    } else {
      const char32_t offset = codePoint - 0x10000;
      appendUnit(out, static_cast<std::uint16_t>(0xD800 + (offset >> 10)));
      appendUnit(out, static_cast<std::uint16_t>(0xDC00 + (offset & 0x3FF)));
    }
  }
  return out;
}

std::optional<std::string> decodeUnicode(std::span<const std::uint8_t> bytes) {
  if (bytes.size() % 2 != 0) {
    return std::nullopt;
  }
  bool bigEndian = false;
  if (bytes.size() >= 2 && bytes[0] == 0xFE && bytes[1] == 0xFF) {
    bigEndian = true;
    bytes = bytes.subspan(2);
  } else if (bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE) {
    bytes = bytes.subspan(2);
  }
  auto unitAt = [&](std::size_t i) -> char32_t {
    const std::uint8_t first = bytes[2 * i];
    const std::uint8_t second = bytes[2 * i + 1];
    return bigEndian ? (char32_t{first} << 8) | second : (char32_t{second} << 8) | first;
  };
  const std::size_t units = bytes.size() / 2;
  std::string out;
  out.reserve(units * 3 / 2);
  for (std::size_t i = 0; i < units; ++i) {
    char32_t unit = unitAt(i);
    if (isLowSurrogate(unit)) {
      return std::nullopt;
    }
    if (isHighSurrogate(unit)) {
      if (i + 1 == units || !isLowSurrogate(unitAt(i + 1))) {
        return std::nullopt;
      }
      unit = 0x10000 + ((unit - 0xD800) << 10) + (unitAt(++i) - 0xDC00);
    }
    appendUtf8(out, unit);
  }
  return out;
}

}  // namespace vorn

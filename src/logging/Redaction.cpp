#include "logging/Redaction.hpp"

#include <utf8proc.h>

#include <algorithm>
#include <cstdint>

namespace vorn::detail {
namespace {

// A text as folded code points, with the byte offset where each one starts (plus the end).
struct FoldedText {
  std::vector<std::int32_t> codePoints;
  std::vector<std::size_t> offsets;
};

std::int32_t fold(std::int32_t cp) {
  if (cp < 0x80)
    return (cp >= 'A' && cp <= 'Z') ? cp + ('a' - 'A') : cp;
  utf8proc_int32_t folded[4];
  int lastBoundClass = 0;
  const utf8proc_ssize_t n =
      utf8proc_decompose_char(cp, folded, 4, UTF8PROC_CASEFOLD, &lastBoundClass);
  return n == 1 ? folded[0] : utf8proc_tolower(cp);
}

FoldedText foldText(std::string_view text) {
  FoldedText out;
  out.codePoints.reserve(text.size());
  out.offsets.reserve(text.size() + 1);
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  std::size_t i = 0;
  while (i < text.size()) {
    utf8proc_int32_t cp = 0;
    utf8proc_ssize_t length =
        utf8proc_iterate(bytes + i, static_cast<utf8proc_ssize_t>(text.size() - i), &cp);
    // A malformed byte stands for itself, as a value no code point can fold to.
    if (length <= 0) {
      cp = -1 - static_cast<std::int32_t>(bytes[i]);
      length = 1;
    } else {
      cp = fold(cp);
    }
    out.codePoints.push_back(cp);
    out.offsets.push_back(i);
    i += static_cast<std::size_t>(length);
  }
  out.offsets.push_back(text.size());
  return out;
}

std::string replaceAll(const std::string& message, std::string_view value) {
  const FoldedText target = foldText(value);
  const FoldedText text = foldText(message);
  const auto& needle = target.codePoints;
  const auto& haystack = text.codePoints;
  std::string out;
  std::size_t copied = 0;
  auto from = haystack.begin();
  while (true) {
    const auto hit = std::search(from, haystack.end(), needle.begin(), needle.end());
    if (hit == haystack.end())
      break;
    const auto start = static_cast<std::size_t>(hit - haystack.begin());
    out.append(message, copied, text.offsets[start] - copied);
    out.append(kRedactedMarker);
    copied = text.offsets[start + needle.size()];
    from = hit + static_cast<std::ptrdiff_t>(needle.size());
  }
  if (copied == 0 && out.empty())
    return message;
  out.append(message, copied);
  return out;
}

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

char asciiLower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool containsAsciiIgnoringCase(std::string_view text, std::string_view value) {
  return std::search(text.begin(), text.end(), value.begin(), value.end(),
                     [](char a, char b) { return asciiLower(a) == asciiLower(b); }) != text.end();
}

}  // namespace

std::string redactSecrets(std::string message, const std::vector<std::string>& secrets) {
  for (const std::string& secret : secrets) {
    if (secret.empty() || (isAscii(secret) && !containsAsciiIgnoringCase(message, secret)))
      continue;
    message = replaceAll(message, secret);
  }
  return message;
}

std::string redact(std::string_view message, const std::vector<std::string>& values) {
  std::string result(message);
  for (const std::string& value : values) {
    if (!value.empty())
      result = replaceAll(result, value);
  }
  return result;
}

}  // namespace vorn::detail

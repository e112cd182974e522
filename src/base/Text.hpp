// Unicode-aware helpers for UTF-8 text: case mapping, used wherever a name is compared
// regardless of case, and trimming of white space. Malformed bytes are kept as they are and
// never count as white space. All functions are pure and thread-safe.
#pragma once

#include <string>
#include <string_view>

namespace vorn::detail {

std::string lowercased(std::string_view text);
std::string uppercased(std::string_view text);

/// Whether the code point is white space or a line break: the separator categories (Zs, Zl,
/// Zp), U+0009 to U+000D and U+0085.
bool isWhitespaceOrNewline(char32_t codePoint) noexcept;

/// `text` without leading and trailing white space and line breaks, as defined above.
std::string trimmed(std::string_view text);

}  // namespace vorn::detail

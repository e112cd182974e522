// Small text helpers over UTF-8 text used by the storage layers and by modules: trimming,
// redaction, URL encoding and a few ordinary conversions. Pure functions, thread-safe.
//
// Lengths are counted the way the host platform counts them, in UTF-16 code units, so that a
// redacted text has the length the host sees.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"

namespace vorn {

/// Removes white space (the Zs category and tab), but not line breaks, at both ends.
VORN_API std::string trim(std::string_view text);
/// Keeps the first `count` characters and turns every further one into "-".
VORN_API std::string redactedWithPrefix(std::string_view text, std::size_t count);
/// A run of "-" as long as the text.
VORN_API std::string redacted(std::string_view text);
/// Percent-encodes blank, '"', '#', '%', '/', ':', '<', '>', '?', '@', '[', '\\', ']', '^',
/// '`', '{', '|', '}', '&', '=' and '+'; every other character stays.
VORN_API std::string stringByURLEncoding(std::string_view text);

/// True for no text and for the empty text.
VORN_API bool isEmpty(const std::optional<std::string_view>& text);
/// True when nothing but white space and line breaks is left after trimming both.
VORN_API bool isEmptyOrWhitespaceAndNewlines(std::string_view text);
/// The text without any white space or line break anywhere.
VORN_API std::string removeWhitespaces(std::string_view text);
/// The text with every "<...>" markup run removed.
VORN_API std::string stringByStrippingHTML(std::string_view text);
/// The text with its first character in upper case.
VORN_API std::string stringWithTitleCharacter(std::string_view text);
/// The "name=value" pairs of a query text separated by "&", values percent-decoded; a pair
/// without "=" maps to the empty text, and a later pair of the same name wins.
VORN_API std::map<std::string, std::string> queryStringComponents(std::string_view text);
/// Replaces &, <, >, " and ' by their XML entities.
VORN_API std::string escapeXMLCharacter(std::string_view text);
/// Replaces the five XML entities above by their characters.
VORN_API std::string unescapeXMLCharacter(std::string_view text);

}  // namespace vorn

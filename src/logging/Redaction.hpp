// Case-insensitive replacement of sensitive values with "[REDACTED]".
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vorn::detail {

inline constexpr std::string_view kRedactedMarker = "[REDACTED]";

/// For each value in order, replaces every occurrence of it in the message (scanning left to
/// right, not overlapping) with the marker; each value sees the previous value's result, so
/// a value that occurs in the marker is replaced inside it too. Empty values are skipped.
///
/// Comparison folds case code point by code point: ASCII letters directly, other text
/// through Unicode simple case folding (utf8proc's case folding where it maps one code
/// point to one, else the simple lower-case mapping), so lengths never change and a match
/// maps back to an exact byte range. Invalid UTF-8 bytes only match themselves.
std::string redact(std::string_view message, const std::vector<std::string>& values);

/// The same replacement for the logger's secrets, in their order. A secret of ASCII text is
/// first looked for by bytes, ignoring ASCII case, and skipped when absent, so that the many
/// secrets a line does not hold cost a plain search each.
std::string redactSecrets(std::string message, const std::vector<std::string>& secrets);

}  // namespace vorn::detail

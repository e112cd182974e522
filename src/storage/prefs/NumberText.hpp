// Numbers as the host platform's standard library writes and reads them, so that typed
// secure preferences written by another build of the SDK read back the same.
//
// Floating-point text is the shortest decimal that reads back to the same value, in plain
// notation ("100.0", "0.0001") unless the value is tiny (below 0.0001) or beyond the range
// where every integer is exact, where it switches to exponent notation ("1e-05", "1e+16").
// Pure functions, thread-safe.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorn::detail {

std::string doubleText(double value);
std::string floatText(float value);

/// A base-10 integer with an optional sign and nothing else around it.
std::optional<std::int64_t> parseInteger(std::string_view text);
/// Decimal or hexadecimal floating-point text, "inf" or "nan"; nothing else around it.
std::optional<double> parseDouble(std::string_view text);
std::optional<float> parseFloat(std::string_view text);

}  // namespace vorn::detail

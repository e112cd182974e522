// Text comparison with digit runs ordered by their numeric value, as the platform's numeric
// string comparison does without a locale: "8.10.0" comes after "8.9.9", and "01" equals
// "1". Everything else compares byte by byte, which for UTF-8 is code point order.
#pragma once

#include <compare>
#include <string_view>

namespace vorn::detail {

std::strong_ordering compareNumerically(std::string_view a, std::string_view b);

}  // namespace vorn::detail

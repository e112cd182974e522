// Millisecond arithmetic that stops at the ends of int64 instead of overflowing: deadlines
// come from stored text and server headers, and must never wrap into the past.
#pragma once

#include <cstdint>
#include <limits>

namespace vorn::network {

inline std::int64_t saturatingAdd(std::int64_t a, std::int64_t b) {
  std::int64_t sum = 0;
  if (!__builtin_add_overflow(a, b, &sum))
    return sum;
  return b > 0 ? std::numeric_limits<std::int64_t>::max()
               : std::numeric_limits<std::int64_t>::min();
}

inline std::int64_t saturatingSub(std::int64_t a, std::int64_t b) {
  std::int64_t difference = 0;
  if (!__builtin_sub_overflow(a, b, &difference))
    return difference;
  return b < 0 ? std::numeric_limits<std::int64_t>::max()
               : std::numeric_limits<std::int64_t>::min();
}

inline std::int64_t saturatingMul(std::int64_t a, std::int64_t b) {
  std::int64_t product = 0;
  if (!__builtin_mul_overflow(a, b, &product))
    return product;
  return (a < 0) == (b < 0) ? std::numeric_limits<std::int64_t>::max()
                            : std::numeric_limits<std::int64_t>::min();
}

}  // namespace vorn::network

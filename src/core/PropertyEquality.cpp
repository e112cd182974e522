#include "core/PropertyEquality.hpp"

#include <cmath>
#include <cstdint>
#include <optional>

namespace vorn::detail {
namespace {

// Booleans and integers as the integer a platform number object would hold.
std::optional<std::int64_t> integerOf(const Value& value) {
  if (const auto* b = value.get<bool>())
    return *b ? 1 : 0;
  if (const auto* i = value.get<std::int64_t>())
    return *i;
  return std::nullopt;
}

bool integerEqualsDouble(std::int64_t i, double d) {
  // 2^63 is exactly representable; anything at or beyond it cannot equal an int64.
  constexpr double kTwoTo63 = 9223372036854775808.0;
  if (!std::isfinite(d) || std::trunc(d) != d || d < -kTwoTo63 || d >= kTwoTo63)
    return false;
  return static_cast<std::int64_t>(d) == i;
}

std::optional<bool> numbersEqual(const Value& a, const Value& b) {
  const auto ia = integerOf(a);
  const auto ib = integerOf(b);
  const auto* da = a.get<double>();
  const auto* db = b.get<double>();
  if (ia && ib)
    return *ia == *ib;
  if (ia && db)
    return integerEqualsDouble(*ia, *db);
  if (da && ib)
    return integerEqualsDouble(*ib, *da);
  if (da && db)
    return *da == *db;
  return std::nullopt;
}

bool arraysEqual(const Array& a, const Array& b) {
  if (a.size() != b.size())
    return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (!platformObjectsEqual(a[i], b[i]))
      return false;
  }
  return true;
}

bool dictionariesEqual(const Dictionary& a, const Dictionary& b) {
  if (a.size() != b.size())
    return false;
  for (const auto& [key, value] : a) {
    const auto other = b.find(key);
    if (other == b.end() || !platformObjectsEqual(value, other->second))
      return false;
  }
  return true;
}

}  // namespace

bool platformObjectsEqual(const Value& a, const Value& b) {
  if (const auto numeric = numbersEqual(a, b))
    return *numeric;
  const auto* arrayA = a.get<Array>();
  const auto* arrayB = b.get<Array>();
  if (arrayA && arrayB)
    return arraysEqual(*arrayA, *arrayB);
  const auto* dictA = a.get<Dictionary>();
  const auto* dictB = b.get<Dictionary>();
  if (dictA && dictB)
    return dictionariesEqual(*dictA, *dictB);
  return a == b;
}

}  // namespace vorn::detail

#include "vorn/base/Decimal.hpp"

#include <limits>

namespace vorn {
namespace {

constexpr std::int64_t kMaxScaleMagnitude = Decimal::kMaxScaleMagnitude;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

std::uint64_t magnitudeOf(std::int64_t value) {
  return value < 0 ? std::uint64_t{0} - static_cast<std::uint64_t>(value)
                   : static_cast<std::uint64_t>(value);
}

// A nonzero magnitude as its significant digits and the power of ten of the leading one, so
// that two magnitudes compare without padding either to a common scale.
struct Significand {
  std::uint64_t digits = 0;  // no trailing zero
  int count = 0;             // decimal digits in `digits`, at most 19
  std::int64_t leading = 0;  // the power of ten of the leading digit
};

Significand significandOf(std::uint64_t magnitude, std::int64_t scale) {
  while (magnitude % 10 == 0) {
    magnitude /= 10;
    --scale;
  }
  int count = 1;
  for (std::uint64_t rest = magnitude; rest >= 10; rest /= 10)
    ++count;
  return Significand{magnitude, count, count - 1 - scale};
}

std::strong_ordering compareMagnitudes(const Decimal& a, const Decimal& b) {
  Significand x = significandOf(magnitudeOf(a.mantissa()), a.scale());
  Significand y = significandOf(magnitudeOf(b.mantissa()), b.scale());
  if (x.leading != y.leading)
    return x.leading <=> y.leading;
  // Equal leading powers: align the digits on the left. Nineteen digits stay below 10^19,
  // which fits in 64 bits.
  for (; x.count < y.count; ++x.count)
    x.digits *= 10;
  for (; y.count < x.count; ++y.count)
    y.digits *= 10;
  return x.digits <=> y.digits;
}

}  // namespace

std::optional<Decimal> Decimal::parse(std::string_view text) noexcept {
  std::size_t i = 0;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-'))
    negative = text[i++] == '-';

  std::uint64_t magnitude = 0;
  std::int64_t scale = 0;
  bool sawDigit = false;
  bool sawPoint = false;
  for (; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '.' && !sawPoint) {
      sawPoint = true;
      continue;
    }
    if (!isDigit(c))
      break;
    sawDigit = true;
    const auto digit = static_cast<std::uint64_t>(c - '0');
    if (magnitude > (std::numeric_limits<std::uint64_t>::max() - digit) / 10)
      return std::nullopt;
    magnitude = magnitude * 10 + digit;
    if (sawPoint)
      ++scale;
  }
  if (!sawDigit)
    return std::nullopt;

  if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    ++i;
    bool negativeExponent = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-'))
      negativeExponent = text[i++] == '-';
    if (i == text.size())
      return std::nullopt;
    std::int64_t exponent = 0;
    for (; i < text.size() && isDigit(text[i]); ++i) {
      exponent = exponent * 10 + (text[i] - '0');
      if (exponent > 2 * kMaxScaleMagnitude)
        return std::nullopt;
    }
    scale += negativeExponent ? exponent : -exponent;
  }
  if (i != text.size() || scale > kMaxScaleMagnitude || scale < -kMaxScaleMagnitude)
    return std::nullopt;

  const std::uint64_t limit =
      negative ? std::uint64_t{1} << 63 : static_cast<std::uint64_t>(INT64_MAX);
  if (magnitude > limit)
    return std::nullopt;
  const std::int64_t mantissa = negative ? static_cast<std::int64_t>(std::uint64_t{0} - magnitude)
                                         : static_cast<std::int64_t>(magnitude);
  return Decimal(mantissa, static_cast<std::int32_t>(scale));
}

std::string Decimal::toString() const {
  std::string digits = std::to_string(magnitudeOf(mantissa_));
  if (scale_ < 0) {
    if (mantissa_ != 0)
      digits.append(static_cast<std::size_t>(-static_cast<std::int64_t>(scale_)), '0');
  } else if (scale_ > 0) {
    const auto scale = static_cast<std::size_t>(scale_);
    if (digits.size() <= scale)
      digits.insert(0, scale - digits.size() + 1, '0');
    digits.insert(digits.size() - scale, 1, '.');
  }
  return mantissa_ < 0 ? "-" + digits : digits;
}

bool Decimal::operator==(const Decimal& other) const noexcept {
  return (*this <=> other) == std::strong_ordering::equal;
}

std::strong_ordering Decimal::operator<=>(const Decimal& other) const noexcept {
  const int signA = (mantissa_ > 0) - (mantissa_ < 0);
  const int signB = (other.mantissa_ > 0) - (other.mantissa_ < 0);
  if (signA != signB)
    return signA <=> signB;
  if (signA == 0)
    return std::strong_ordering::equal;
  const std::strong_ordering magnitudes = compareMagnitudes(*this, other);
  return signA > 0 ? magnitudes : 0 <=> magnitudes;
}

}  // namespace vorn

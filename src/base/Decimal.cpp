#include "vorn/base/Decimal.hpp"

#include <algorithm>
#include <limits>

namespace vorn {
namespace {

// The exponent range of the platform decimal type; it also keeps comparisons, which pad
// digits to a common scale, small.
constexpr std::int64_t kMaxScaleMagnitude = 128;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// Numeric comparison of the magnitudes as unsigned digit strings padded to a common scale.
std::string digitsAtScale(std::uint64_t magnitude, std::int64_t scale, std::int64_t target) {
  std::string digits = std::to_string(magnitude);
  digits.append(static_cast<std::size_t>(target - scale), '0');
  const std::size_t firstNonZero = digits.find_first_not_of('0');
  return firstNonZero == std::string::npos ? std::string() : digits.substr(firstNonZero);
}

std::uint64_t magnitudeOf(std::int64_t value) {
  return value < 0 ? std::uint64_t{0} - static_cast<std::uint64_t>(value)
                   : static_cast<std::uint64_t>(value);
}

std::strong_ordering compareMagnitudes(const Decimal& a, const Decimal& b) {
  const std::int64_t target = std::max<std::int64_t>(a.scale(), b.scale());
  const std::string da = digitsAtScale(magnitudeOf(a.mantissa()), a.scale(), target);
  const std::string db = digitsAtScale(magnitudeOf(b.mantissa()), b.scale(), target);
  if (da.size() != db.size())
    return da.size() <=> db.size();
  const int c = da.compare(db);
  return c < 0 ? std::strong_ordering::less
               : (c > 0 ? std::strong_ordering::greater : std::strong_ordering::equal);
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

// Decimal: an exact decimal number, mantissa × 10^-scale, for prices and totals.
//
// Text is parsed and printed without binary floating point, so "19.90" comes back as
// "19.90" (the scale is kept) and 0.1 + 0.2 style rounding never happens. The mantissa is
// a signed 64-bit integer: up to 18 significant digits always fit. Text that needs more, or
// that is not a decimal number, does not parse.
//
// Scales lie within -kMaxScaleMagnitude..kMaxScaleMagnitude (-128..128, the platform decimal
// type's exponent range): text outside it does not parse, and the constructor saturates a
// scale beyond it to the nearest bound, so that printing stays under 150 characters and
// comparison never pads digits.
//
// Equality and ordering are numeric: 1.5 == 1.50.
//
// A plain value type; thread-safe as any const object.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"

namespace vorn {

class VORN_API Decimal {
 public:
  /// The largest scale magnitude a decimal keeps.
  static constexpr std::int32_t kMaxScaleMagnitude = 128;

  /// Zero.
  constexpr Decimal() noexcept = default;
  /// mantissa × 10^-scale; a negative scale multiplies by a power of ten. A scale beyond
  /// ±kMaxScaleMagnitude is saturated to it.
  constexpr Decimal(std::int64_t mantissa, std::int32_t scale) noexcept
      : mantissa_(mantissa), scale_(saturated(scale)) {}

  /// Accepts an optional sign, digits with at most one decimal point (at least one digit
  /// overall) and an optional exponent ("e" or "E", optional sign, digits), with no white
  /// space: "-12.50", "3", ".5", "1e3", "2.5E-2". Anything else gives no value.
  static std::optional<Decimal> parse(std::string_view text) noexcept;

  constexpr std::int64_t mantissa() const noexcept { return mantissa_; }
  constexpr std::int32_t scale() const noexcept { return scale_; }

  /// Plain notation, never an exponent: digits of the mantissa with `scale` of them after
  /// the point ("-0.05", "1500", "19.90").
  std::string toString() const;

  bool operator==(const Decimal& other) const noexcept;
  std::strong_ordering operator<=>(const Decimal& other) const noexcept;

 private:
  static constexpr std::int32_t saturated(std::int32_t scale) noexcept {
    return scale < -kMaxScaleMagnitude  ? -kMaxScaleMagnitude
           : scale > kMaxScaleMagnitude ? kMaxScaleMagnitude
                                        : scale;
  }

  std::int64_t mantissa_ = 0;
  std::int32_t scale_ = 0;
};

}  // namespace vorn

#include "storage/prefs/NumberText.hpp"

#include <locale.h>

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace vorn::detail {

namespace {

// The shortest round-trip digits of a finite non-zero value and its exponent, written so
// that value = 0.DIGITS x 10^exponent.
struct Shortest {
  std::string digits;
  int exponent;
};

template <class T>
Shortest shortestDigits(T magnitude) {
  char buffer[64];
  const auto result =
      std::to_chars(std::begin(buffer), std::end(buffer), magnitude, std::chars_format::scientific);
  const std::string_view text(buffer, static_cast<std::size_t>(result.ptr - buffer));
  const std::size_t e = text.find('e');
  Shortest out;
  for (char c : text.substr(0, e)) {
    if (c != '.') {
      out.digits.push_back(c);
    }
  }
  int scientific = 0;
  std::string_view exponent = text.substr(e + 1);
  if (exponent.front() == '+') {
    exponent.remove_prefix(1);
  }
  std::from_chars(exponent.data(), exponent.data() + exponent.size(), scientific);
  out.exponent = scientific + 1;
  return out;
}

std::string exponential(const Shortest& s) {
  std::string out(1, s.digits[0]);
  if (s.digits.size() > 1) {
    out += '.';
    out.append(s.digits, 1);
  }
  const int exponent = s.exponent - 1;
  out += exponent < 0 ? "e-" : "e+";
  const std::string magnitude = std::to_string(std::abs(exponent));
  if (magnitude.size() < 2) {
    out += '0';
  }
  return out + magnitude;
}

std::string plain(const Shortest& s) {
  const int count = static_cast<int>(s.digits.size());
  if (s.exponent <= 0) {
    return "0." + std::string(static_cast<std::size_t>(-s.exponent), '0') + s.digits;
  }
  if (s.exponent < count) {
    std::string out = s.digits;
    out.insert(static_cast<std::size_t>(s.exponent), 1, '.');
    return out;
  }
  return s.digits + std::string(static_cast<std::size_t>(s.exponent - count), '0') + ".0";
}

template <class T>
std::string floatingText(T value, T plainLimit) {
  const std::string sign = std::signbit(value) ? "-" : "";
  if (std::isnan(value)) {
    return sign + "nan";
  }
  if (std::isinf(value)) {
    return sign + "inf";
  }
  if (value == 0) {
    return sign + "0.0";
  }
  const T magnitude = std::fabs(value);
  const Shortest s = shortestDigits(magnitude);
  return sign + (s.exponent < -3 || magnitude > plainLimit ? exponential(s) : plain(s));
}

locale_t cLocale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return locale;
}

// strtod accepts leading blanks and stops early; the platform parser takes the whole text
// or nothing.
bool startsClean(std::string_view text) {
  return !text.empty() && text.front() != ' ' && (text.front() < '\t' || text.front() > '\r');
}

}  // namespace

std::string doubleText(double value) {
  return floatingText(value, 0x1.0p53);
}

std::string floatText(float value) {
  return floatingText(value, 0x1.0p24f);
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
  if (!text.empty() && text.front() == '+') {
    text.remove_prefix(1);
    if (!text.empty() && text.front() == '-') {
      return std::nullopt;
    }
  }
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return value;
}

std::optional<double> parseDouble(std::string_view text) {
  if (!startsClean(text)) {
    return std::nullopt;
  }
  const std::string copy(text);
  char* end = nullptr;
  const double value = strtod_l(copy.c_str(), &end, cLocale());
  if (end != copy.c_str() + copy.size()) {
    return std::nullopt;
  }
  return value;
}

std::optional<float> parseFloat(std::string_view text) {
  if (!startsClean(text)) {
    return std::nullopt;
  }
  const std::string copy(text);
  char* end = nullptr;
  const float value = strtof_l(copy.c_str(), &end, cLocale());
  if (end != copy.c_str() + copy.size()) {
    return std::nullopt;
  }
  return value;
}

}  // namespace vorn::detail

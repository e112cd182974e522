#include "vorn/base/Value.hpp"

#include <cmath>
#include <limits>

#include <nlohmann/json.hpp>

#include "vorn/base/Timestamp.hpp"

namespace vorn {
namespace {

std::string base64(const Bytes& bytes) {
  static constexpr char kAlphabet[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  out.reserve((bytes.size() + 2) / 3 * 4);
  std::size_t i = 0;
  for (; i + 2 < bytes.size(); i += 3) {
    const unsigned n = (bytes[i] << 16) | (bytes[i + 1] << 8) | bytes[i + 2];
    out += kAlphabet[(n >> 18) & 63];
    out += kAlphabet[(n >> 12) & 63];
    out += kAlphabet[(n >> 6) & 63];
    out += kAlphabet[n & 63];
  }
  if (i + 1 == bytes.size()) {
    const unsigned n = bytes[i] << 16;
    out += kAlphabet[(n >> 18) & 63];
    out += kAlphabet[(n >> 12) & 63];
    out += "==";
  } else if (i + 2 == bytes.size()) {
    const unsigned n = (bytes[i] << 16) | (bytes[i + 1] << 8);
    out += kAlphabet[(n >> 18) & 63];
    out += kAlphabet[(n >> 12) & 63];
    out += kAlphabet[(n >> 6) & 63];
    out += '=';
  }
  return out;
}

nlohmann::json decimalToJson(const Decimal& decimal) {
  std::int64_t whole = decimal.mantissa();
  std::int32_t scale = decimal.scale();
  while (scale > 0 && whole % 10 == 0) {
    whole /= 10;
    --scale;
  }
  constexpr std::int64_t kLimit = std::numeric_limits<std::int64_t>::max() / 10;
  while (scale < 0 && whole != 0 && whole <= kLimit && whole >= -kLimit) {
    whole *= 10;
    ++scale;
  }
  if (scale == 0 || whole == 0)
    return whole;
  // Not a whole number (or too large for one): the JSON reader's nearest double.
  return nlohmann::json::parse(decimal.toString() + (scale < 0 ? "e0" : ""));
}

struct ToJson {
  nlohmann::json operator()(std::nullptr_t) const { return nullptr; }
  nlohmann::json operator()(bool value) const { return value; }
  nlohmann::json operator()(std::int64_t value) const { return value; }
  nlohmann::json operator()(double value) const {
    return std::isfinite(value) ? nlohmann::json(value) : nlohmann::json(nullptr);
  }
  nlohmann::json operator()(const Decimal& value) const { return decimalToJson(value); }
  nlohmann::json operator()(const std::string& value) const { return value; }
  nlohmann::json operator()(const Date& value) const { return formatTimestamp(value); }
  nlohmann::json operator()(const Bytes& value) const { return base64(value); }
  nlohmann::json operator()(const Array& value) const {
    nlohmann::json out = nlohmann::json::array();
    for (const Value& element : value)
      out.push_back(toJson(element));
    return out;
  }
  nlohmann::json operator()(const Dictionary& value) const { return toJson(value); }
};

}  // namespace

bool Value::operator==(const Value& other) const {
  return storage_ == other.storage_;
}

nlohmann::json toJson(const Value& value) {
  return std::visit(ToJson{}, value.storage());
}

nlohmann::json toJson(const Dictionary& dictionary) {
  nlohmann::json out = nlohmann::json::object();
  for (const auto& [key, value] : dictionary)
    out[key] = toJson(value);
  return out;
}

}  // namespace vorn

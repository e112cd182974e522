// Value: one attribute, property or parameter value - null, bool, 64-bit integer, double,
// Decimal, UTF-8 string, Date, bytes, array or dictionary - and Dictionary, the string-keyed
// map of values that events, messages and state snapshots carry.
//
// Values are plain, copyable and compare by content (a double 1.0 and an integer 1 are
// different values). Construction picks the alternative from the C++ type: any integer type
// but bool gives an integer, a string literal gives a string.
//
// toJson() turns values into JSON for snapshots: integers, doubles and decimals become
// numbers (non-finite doubles become null; a decimal becomes an integer when it is whole and
// fits, otherwise the nearest double), dates become their time stamp text
// ("2026-11-23T00:44:14Z"), bytes become standard base64 text.
//
// Thread-safe as any const object.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "vorn/base/Date.hpp"
#include "vorn/base/Decimal.hpp"
#include "vorn/base/Export.hpp"

namespace vorn {

class Value;
using Bytes = std::vector<std::uint8_t>;
using Array = std::vector<Value>;
using Dictionary = std::map<std::string, Value>;

class VORN_API Value {
 public:
  enum class Type { null, boolean, integer, real, decimal, string, date, bytes, array, dictionary };
  // Alternatives in the order of Type.
  using Storage = std::variant<std::nullptr_t, bool, std::int64_t, double, Decimal, std::string,
                               Date, Bytes, Array, Dictionary>;

  Value() noexcept : storage_(nullptr) {}
  Value(std::nullptr_t) noexcept : storage_(nullptr) {}
  Value(bool value) noexcept : storage_(value) {}
  template <std::integral T>
  requires(!std::same_as<T, bool>) Value(T value)
  noexcept : storage_(static_cast<std::int64_t>(value)) {}
  Value(double value) noexcept : storage_(value) {}
  Value(Decimal value) noexcept : storage_(value) {}
  Value(std::string value) noexcept : storage_(std::move(value)) {}
  Value(std::string_view value) : storage_(std::string(value)) {}
  Value(const char* value) : storage_(std::string(value)) {}
  Value(Date value) noexcept : storage_(value) {}
  Value(Bytes value) noexcept : storage_(std::move(value)) {}
  Value(Array value) noexcept : storage_(std::move(value)) {}
  Value(Dictionary value) noexcept : storage_(std::move(value)) {}

  Type type() const noexcept { return static_cast<Type>(storage_.index()); }
  bool isNull() const noexcept { return type() == Type::null; }

  /// The stored alternative when it is a T, else null: `if (auto* s = v.get<std::string>())`.
  template <class T>
  const T* get() const noexcept {
    return std::get_if<T>(&storage_);
  }
  const Storage& storage() const noexcept { return storage_; }

  bool operator==(const Value& other) const;

 private:
  Storage storage_;
};

VORN_API nlohmann::json toJson(const Value& value);
VORN_API nlohmann::json toJson(const Dictionary& dictionary);

}  // namespace vorn

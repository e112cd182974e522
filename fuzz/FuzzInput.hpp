// Reads a fuzzer's bytes as a stream of small typed pieces, so one input can drive an entry
// that takes several arguments. Every read succeeds: past the end it gives zeros and empty
// texts, so any input, however short, is a complete call.
//
// Header-only and free of libFuzzer, so the same target builds with the replay main.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vorn/base/Value.hpp"

namespace vorn::fuzz {

class FuzzInput {
 public:
  FuzzInput(const std::uint8_t* data, std::size_t size) : bytes_(data, size) {}

  bool empty() const noexcept { return bytes_.empty(); }

  std::uint8_t byte() {
    if (bytes_.empty())
      return 0;
    const std::uint8_t value = bytes_.front();
    bytes_ = bytes_.subspan(1);
    return value;
  }

  template <class T>
  T number() {
    T value{};
    const std::size_t count = std::min(sizeof(T), bytes_.size());
    std::memcpy(&value, bytes_.data(), count);
    bytes_ = bytes_.subspan(count);
    return value;
  }

  /// Up to the next NUL byte (consumed, not part of the text), or the rest when there is none.
  std::string text() {
    const auto end = std::find(bytes_.begin(), bytes_.end(), std::uint8_t{0});
    std::string value(bytes_.begin(), end);
    bytes_ = bytes_.subspan(std::min(value.size() + 1, bytes_.size()));
    return value;
  }

  /// Everything not read yet.
  std::span<const std::uint8_t> rest() {
    const auto value = bytes_;
    bytes_ = {};
    return value;
  }
  std::string restText() {
    const auto value = rest();
    return std::string(value.begin(), value.end());
  }

  /// A value of any type, nested at most `depth` levels, with texts taken as they come (not
  /// necessarily UTF-8).
  Value value(int depth = 4) {
    switch (byte() % 10) {
      case 0:
        return Value();
      case 1:
        return Value((byte() & 1) != 0);
      case 2:
        return Value(number<std::int64_t>());
      case 3:
        return Value(number<double>());
      case 4: {
        // Read in sequence: argument order differs between compilers, and a crasher found by
        // the clang fuzzer must replay the same in the gcc build.
        const auto mantissa = number<std::int64_t>();
        return Value(Decimal(mantissa, number<std::int32_t>()));
      }
      case 5:
        return Value(Date(std::chrono::nanoseconds(number<std::int64_t>())));
      case 6: {
        const std::string bytes = text();
        return Value(Bytes(bytes.begin(), bytes.end()));
      }
      case 7:
        return depth > 0 ? Value(array(depth - 1)) : Value(text());
      case 8:
        return depth > 0 ? Value(dictionary(depth - 1)) : Value(text());
      default:
        return Value(text());
    }
  }

  Array array(int depth = 4) {
    Array values;
    for (std::uint8_t count = byte() % 8; count > 0 && !empty(); --count)
      values.push_back(value(depth));
    return values;
  }

  Dictionary dictionary(int depth = 4) {
    Dictionary values;
    for (std::uint8_t count = byte() % 8; count > 0 && !empty(); --count) {
      std::string key = text();
      values.insert_or_assign(std::move(key), value(depth));
    }
    return values;
  }

 private:
  std::span<const std::uint8_t> bytes_;
};

}  // namespace vorn::fuzz

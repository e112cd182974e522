// Raw-value tables for the enumerations whose raw value is text. An enumeration lists its
// raw values in tag order; both directions of the mapping read the same table.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace vorn::detail {

template <class E, std::size_t N>
constexpr std::string_view rawValueIn(const std::array<std::string_view, N>& table, E value) {
  return table[static_cast<std::size_t>(value)];
}

template <class E, std::size_t N>
constexpr std::optional<E> fromRawValueIn(const std::array<std::string_view, N>& table,
                                          std::string_view raw) {
  for (std::size_t i = 0; i < N; ++i) {
    if (table[i] == raw)
      return static_cast<E>(i);
  }
  return std::nullopt;
}

}  // namespace vorn::detail

// How FakePushModule records and answers: the answer template and the conversions of
// arguments that are not values themselves.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "vorn/testing/FakePushModule.hpp"

namespace vorn::testing {

template <class T>
inline constexpr bool kCanBeAbsent = false;
template <class T>
inline constexpr bool kCanBeAbsent<std::optional<T>> = true;
template <class T>
inline constexpr bool kCanBeAbsent<std::shared_ptr<T>> = true;

template <class R>
R FakePushModule::answer(std::string operation, Array arguments, R present) {
  record(std::move(operation), std::move(arguments));
  if constexpr (kCanBeAbsent<R>) {
    if (answersAbsent())
      return R{};
  }
  return present;
}

inline Value arg(const std::optional<std::string>& text) {
  return text ? Value(*text) : Value();
}

template <class T>
Value arg(const std::vector<T>& items) {
  return Array(items.begin(), items.end());
}

// Delegates, views and callbacks are recorded as whether one was handed in.
template <class T>
Value arg(const std::shared_ptr<T>& object) {
  return object != nullptr;
}

template <class Signature>
Value arg(const std::function<Signature>& callback) {
  return static_cast<bool>(callback);
}

}  // namespace vorn::testing

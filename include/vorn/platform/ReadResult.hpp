// ReadResult: what one read of a store found, with the three outcomes kept apart.
//
// found: the value is there. absent: the store answered that nothing is stored, so a caller may
// create a value. error: the store could not answer (locked device, unreadable file, ...);
// nothing may be concluded from it, so a caller keeps what it has, creates, deletes and
// overwrites nothing, and asks again on its next call.
//
// status() is errSecSuccess when found, errSecItemNotFound when absent, and the backend's own
// status otherwise (an OSStatus from the key store, a SQLite result code from the defaults
// store). Plain value type.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "vorn/platform/KeychainStatus.hpp"

namespace vorn {

enum class ReadOutcome : int {
  found = 0,
  absent = 1,
  error = 2,
};

template <class T>
class ReadResult {
 public:
  static ReadResult found(T value) { return ReadResult(std::move(value)); }
  static ReadResult absent() { return ReadResult(ReadOutcome::absent, errSecItemNotFound); }
  static ReadResult error(std::int32_t status) { return ReadResult(ReadOutcome::error, status); }

  ReadOutcome outcome() const noexcept { return outcome_; }
  bool isFound() const noexcept { return outcome_ == ReadOutcome::found; }
  bool isAbsent() const noexcept { return outcome_ == ReadOutcome::absent; }
  bool isError() const noexcept { return outcome_ == ReadOutcome::error; }
  std::int32_t status() const noexcept { return status_; }

  /// The value; only meaningful when found.
  const T& value() const& { return *value_; }
  T&& value() && { return std::move(*value_); }
  /// The value when found, nothing otherwise (absent and error both become nothing).
  std::optional<T> valueIfFound() && { return std::move(value_); }

  /// The same outcome carrying `convert(value)` when found.
  template <class Convert>
  auto map(Convert convert) && -> ReadResult<decltype(convert(std::declval<T>()))> {
    using U = decltype(convert(std::declval<T>()));
    if (isFound())
      return ReadResult<U>::found(convert(std::move(*value_)));
    return isAbsent() ? ReadResult<U>::absent() : ReadResult<U>::error(status_);
  }

 private:
  explicit ReadResult(T value)
      : outcome_(ReadOutcome::found), status_(errSecSuccess), value_(std::move(value)) {}
  ReadResult(ReadOutcome outcome, std::int32_t status) : outcome_(outcome), status_(status) {}

  ReadOutcome outcome_;
  std::int32_t status_;
  std::optional<T> value_;
};

}  // namespace vorn

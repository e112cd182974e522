// The bridge's boundary: runs a call's body, turns anything thrown into a log line and an
// error result, and logs refusals of bad arguments, so that nothing crosses into C.
#pragma once

#include <cstring>
#include <exception>
#include <string_view>

#include "vorn/vorn.h"

namespace vorn::capi {

/// The integer a C host passed for an enumeration. A C enum argument may hold any int, and in
/// C++ reading a value outside the enumerators' range as the enum is undefined, so the bits
/// are copied instead of loaded as the enum; the caller then checks the range.
template <class CEnum>
int rawEnum(const CEnum& value) noexcept {
  static_assert(sizeof(CEnum) == sizeof(int));
  int raw = 0;
  std::memcpy(&raw, &value, sizeof raw);
  return raw;
}

/// Logs "<function>: <reason>" as an error (category `sdk`). Never throws.
void logFailure(std::string_view function, std::string_view reason) noexcept;

/// Logs the reason and answers `status`.
inline vorn_status refuse(std::string_view function, vorn_status status,
                          std::string_view reason) noexcept {
  logFailure(function, reason);
  return status;
}

/// Runs `body`, answering what it answers, or `failed` after a log line when it throws.
template <class Result, class Body>
Result guarded(std::string_view function, Result failed, Body&& body) noexcept {
  try {
    return body();
  } catch (const std::exception& error) {
    logFailure(function, error.what());
  } catch (...) {
    logFailure(function, "unknown exception");
  }
  return failed;
}

/// As guarded() for calls answering a status: VORN_ERROR_INTERNAL when the body throws.
template <class Body>
vorn_status guardedStatus(std::string_view function, Body&& body) noexcept {
  return guarded<vorn_status>(function, VORN_ERROR_INTERNAL, static_cast<Body&&>(body));
}

/// As guarded() for calls answering text: NULL when the body throws.
template <class Body>
char* guardedText(std::string_view function, Body&& body) noexcept {
  return guarded<char*>(function, nullptr, static_cast<Body&&>(body));
}

}  // namespace vorn::capi

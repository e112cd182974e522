// The bridge's boundary: runs a call's body, turns anything thrown into a log line and an
// error result, and logs refusals of bad arguments, so that nothing crosses into C.
#pragma once

#include <exception>
#include <string_view>

#include "vorn/vorn.h"

namespace vorn::capi {

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

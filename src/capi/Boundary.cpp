#include "capi/Boundary.hpp"

#include <string>

#include "vorn/logging/Log.hpp"

namespace vorn::capi {

void logFailure(std::string_view function, std::string_view reason) noexcept {
  try {
    VORN_LOG_ERROR(LoggerCategory::sdk, std::string(function) + ": " + std::string(reason));
  } catch (...) {
    // Out of memory while building the line: the caller still gets its error result.
  }
}

}  // namespace vorn::capi

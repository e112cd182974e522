// The SDK state snapshot behind VORNSdk::state().
#pragma once

#include <string>
#include <string_view>

namespace vorn::detail {

/// The snapshot as pretty-printed JSON with sorted keys, before it is made readable.
std::string stateJson();

/// Turns every escaped line feed into a real one and drops every other backslash. The result
/// reads better in a log and is, deliberately, not always valid JSON any more.
std::string readableState(std::string_view json);

}  // namespace vorn::detail

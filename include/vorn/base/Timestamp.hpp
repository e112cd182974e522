// Text time stamps: "yyyy-MM-dd'T'HH:mm:ssZZZZZ" in UTC, e.g. "2026-11-23T00:44:14Z", with
// the POSIX locale's digits. Messages carry one; other parts of the SDK reuse the format.
//
// Fractions of a second are dropped (times before 1970 round down, to the earlier second).
//
// Thread-safe. Each thread keeps the text of the last second it formatted, so stamping many
// messages within one second formats once.
#pragma once

#include <string>

#include "vorn/base/Date.hpp"
#include "vorn/base/Export.hpp"

namespace vorn {

VORN_API std::string formatTimestamp(Date date);

/// formatTimestamp() of the current wall-clock time.
VORN_API std::string currentTimestamp();

}  // namespace vorn

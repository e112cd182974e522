// NetworkManagerError: why the network manager refused a request without sending it.
//
// One case per refusal; the raw values are stable and are what a host sees through the C
// bridge:
//   alreadyInFlight     = 1  a request of the same name is still running
//   blockedByRetryAfter = 2  the name is blocked by a server (Retry-After) or device
//                            (rateLimit) deadline
//   noTransport         = 3  the manager was made without an HTTP transport
#pragma once

#include <string_view>

#include "vorn/base/Export.hpp"

namespace vorn {

enum class NetworkManagerError : int {
  alreadyInFlight = 1,
  blockedByRetryAfter = 2,
  noTransport = 3,
};

/// A short English description of the refusal, for diagnostics.
VORN_API std::string_view describe(NetworkManagerError error);

}  // namespace vorn

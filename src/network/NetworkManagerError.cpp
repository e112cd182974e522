#include "vorn/network/NetworkManagerError.hpp"

namespace vorn {

std::string_view describe(NetworkManagerError error) {
  switch (error) {
    case NetworkManagerError::alreadyInFlight:
      return "a request of the same name is already in flight";
    case NetworkManagerError::blockedByRetryAfter:
      return "the request name is blocked by retry after";
    case NetworkManagerError::noTransport:
      return "the network manager has no HTTP transport";
  }
  return "unknown network manager error";
}

}  // namespace vorn

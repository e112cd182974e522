#include "vorn/platform/KeychainStatus.hpp"

namespace vorn {

std::string keychainStatusName(OSStatus status) {
  switch (status) {
    case errSecSuccess:
      return "errSecSuccess";
    case errSecUnimplemented:
      return "errSecUnimplemented";
    case errSecParam:
      return "errSecParam";
    case errSecAllocate:
      return "errSecAllocate";
    case errSecNotAvailable:
      return "errSecNotAvailable";
    case errSecAuthFailed:
      return "errSecAuthFailed";
    case errSecDuplicateItem:
      return "errSecDuplicateItem";
    case errSecItemNotFound:
      return "errSecItemNotFound";
    case errSecInteractionNotAllowed:
      return "errSecInteractionNotAllowed";
    case errSecDecode:
      return "errSecDecode";
    default:
      return "Unknown status code (" + std::to_string(status) + ")";
  }
}

}  // namespace vorn

#include <string>

#include "vorn/logging/Log.hpp"
#include "vorn/storage/VORNKeychainItemWrapper.hpp"

namespace vorn {

std::string VORNKeychainItemWrapper::keychainErrorCodeString(OSStatus status) {
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

void VORNKeychainItemWrapper::logKeychainItemExceptionWithCode(long /*code*/,
                                                               std::string_view msg) {
  VORN_LOG_DEBUG(LoggerCategory::encryption,
                 std::string(kZQKeychainItemExceptionType) + " - " + std::string(msg));
}

}  // namespace vorn

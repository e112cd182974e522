#include <string>

#include "vorn/logging/Log.hpp"
#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"

namespace vorn {

std::string VORNKeychainItemWrapper::keychainErrorCodeString(OSStatus status) {
  return keychainStatusName(status);
}

void VORNKeychainItemWrapper::logKeychainItemExceptionWithCode(long /*code*/,
                                                               std::string_view msg) {
  VORN_LOG_DEBUG(LoggerCategory::encryption,
                 std::string(kZQKeychainItemExceptionType) + " - " + std::string(msg));
}

}  // namespace vorn

#include "vorn/platform/KeychainStatus.hpp"
#include "vorn/storage/crypto/VORNSDKCryptoUtils.hpp"

namespace vorn {

std::string VORNSDKCryptoUtils::getMessageWithOSStatus(std::int32_t status) {
  // The host prints the code with %lu, so a negative status reads as its unsigned 64-bit twin.
  const std::string text = keychainStatusName(status);
  return "Error: " + text + ", description: " + text +
         ", code: " + std::to_string(static_cast<unsigned long>(static_cast<long>(status))) +
         ", localizedDesc: " + text;
}

}  // namespace vorn

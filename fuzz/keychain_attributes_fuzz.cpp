// The decoder of the attributes that keychain.db keeps per item, which reads whatever a
// damaged or foreign file holds. It may refuse any input, and must never crash, throw, leak,
// overflow the stack or read out of bounds.
//
// The decoder is internal to the library; its header is reached by path, and it is exported
// (VORN_API) so this target can call it through the shared library like the other targets
// call the public decoders.
#include <cstdint>
#include <span>

#include "../src/platform/sqlite/KeychainAttributes.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto attributes = vorn::platform::decodeKeychainAttributes(std::span(data, size));
  if (attributes) {
    // What decodes must encode back to bytes that decode to the same attributes.
    const auto again = vorn::platform::decodeKeychainAttributes(
        vorn::platform::encodeKeychainAttributes(*attributes));
    if (!again || *again != *attributes)
      __builtin_trap();
  }
  return 0;
}

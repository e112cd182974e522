// Base64 decoding of any text. What decodes encodes back to a text that decodes to the same
// bytes, and any bytes survive an encode and decode unchanged.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "vorn/storage/crypto/Base64.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const vorn::ByteView bytes(data, size);
  if (const auto decoded = vorn::dataFromBase64String(text)) {
    if (vorn::dataFromBase64String(vorn::base64Encode(*decoded)) != decoded)
      std::abort();
  }
  (void)vorn::decode64(text);
  if (vorn::dataFromBase64String(vorn::newBase64Encoding(bytes)) != vorn::Bytes(data, data + size))
    std::abort();
  if (vorn::decode64(vorn::encode64(text)) != std::string(text))
    std::abort();
  return 0;
}

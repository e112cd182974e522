// The byte decoders that read stored or received data: gzip, base64 and the UTF-16 text
// encoding. None may crash, leak or read out of bounds on any input.
#include <cstdint>
#include <span>
#include <string_view>

#include "vorn/storage/crypto/Base64.hpp"
#include "vorn/storage/crypto/Gzip.hpp"
#include "vorn/storage/crypto/UnicodeEncoding.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::uint8_t> bytes(data, size);
  (void)vorn::gzipInflate(bytes);
  (void)vorn::decodeUnicode(bytes);
  (void)vorn::dataFromBase64String(std::string_view(reinterpret_cast<const char*>(data), size));
  return 0;
}

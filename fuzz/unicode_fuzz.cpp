// The platform's "unicode" text decoding of any bytes, as stored secure preferences hold
// after decryption. What decodes is UTF-8 that encodes back and decodes to the same text.
#include <cstdint>
#include <cstdlib>

#include "vorn/storage/crypto/UnicodeEncoding.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto text = vorn::decodeUnicode(std::span(data, size));
  if (!text)
    return 0;
  const auto encoded = vorn::encodeUnicode(*text);
  if (!encoded || vorn::decodeUnicode(*encoded) != text)
    std::abort();
  return 0;
}

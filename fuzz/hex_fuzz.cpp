// Hexadecimal text of any bytes: two lower-case digits per byte, nothing else.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "vorn/storage/crypto/Hex.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const vorn::ByteView bytes(data, size);
  const std::string hex = vorn::newHexStringFromBytes(bytes);
  if (hex.size() != 2 * size || hex != vorn::stringWithHexData(bytes))
    std::abort();
  static constexpr char kDigits[] = "0123456789abcdef";
  for (std::size_t i = 0; i < size; ++i) {
    if (hex[2 * i] != kDigits[data[i] >> 4] || hex[2 * i + 1] != kDigits[data[i] & 0xF])
      std::abort();
  }
  return 0;
}

#include "vorn/storage/crypto/Hex.hpp"

namespace vorn {

std::string newHexStringFromBytes(ByteView data) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string out;
  out.reserve(data.size() * 2);
  for (const std::uint8_t byte : data) {
    out.push_back(kDigits[byte >> 4]);
    out.push_back(kDigits[byte & 0x0F]);
  }
  return out;
}

std::string stringWithHexData(ByteView data) {
  return newHexStringFromBytes(data);
}

}  // namespace vorn

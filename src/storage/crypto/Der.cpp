#include "storage/crypto/Der.hpp"

#include <iterator>

namespace vorn::der {
namespace {

// AlgorithmIdentifier { rsaEncryption, NULL }.
constexpr std::uint8_t kRsaAlgorithmIdentifier[] = {0x30, 0x0d, 0x06, 0x09, 0x2a, 0x86, 0x48, 0x86,
                                                    0xf7, 0x0d, 0x01, 0x01, 0x01, 0x05, 0x00};

std::size_t encodedLengthSize(std::size_t length) {
  Bytes scratch;
  return encodeLength(scratch, length);
}

}  // namespace

std::size_t encodeLength(Bytes& out, std::size_t length) {
  if (length < 128) {
    out.push_back(static_cast<std::uint8_t>(length));
    return 1;
  }
  std::size_t count = 0;
  for (std::size_t rest = length; rest > 0; rest >>= 8)
    ++count;
  out.push_back(static_cast<std::uint8_t>(0x80 + count));
  for (std::size_t i = count; i > 0; --i)
    out.push_back(static_cast<std::uint8_t>(length >> ((i - 1) * 8)));
  return count + 1;
}

Bytes rsaPublicKeyInfo(ByteView rawPublicKey) {
  const std::size_t bitStringLength = rawPublicKey.size() + 1;
  const std::size_t bodyLength =
      sizeof(kRsaAlgorithmIdentifier) + 1 + encodedLengthSize(bitStringLength) + bitStringLength;
  Bytes out;
  out.reserve(1 + encodedLengthSize(bodyLength) + bodyLength);
  out.push_back(0x30);
  encodeLength(out, bodyLength);
  out.insert(out.end(), std::begin(kRsaAlgorithmIdentifier), std::end(kRsaAlgorithmIdentifier));
  out.push_back(0x03);
  encodeLength(out, bitStringLength);
  out.push_back(0x00);
  out.insert(out.end(), rawPublicKey.begin(), rawPublicKey.end());
  return out;
}

}  // namespace vorn::der

#include "vorn/storage/crypto/Base64.hpp"

#include <array>

namespace vorn {
namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::int8_t kSkip = -2;
constexpr std::int8_t kInvalid = -1;

constexpr std::array<std::int8_t, 256> makeDecodeTable() {
  std::array<std::int8_t, 256> table{};
  table.fill(kInvalid);
  for (int i = 0; i < 64; ++i)
    table[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::int8_t>(i);
  for (const char blank : {' ', '\t', '\r', '\n'})
    table[static_cast<unsigned char>(blank)] = kSkip;
  return table;
}

constexpr std::array<std::int8_t, 256> kDecode = makeDecodeTable();

ByteView bytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}  // namespace

std::string base64Encode(ByteView data) {
  std::string out;
  out.reserve((data.size() + 2) / 3 * 4);
  std::size_t i = 0;
  for (; i + 3 <= data.size(); i += 3) {
    const std::uint32_t n = (data[i] << 16) | (data[i + 1] << 8) | data[i + 2];
    for (const int shift : {18, 12, 6, 0})
      out.push_back(kAlphabet[(n >> shift) & 0x3F]);
  }
  const std::size_t rest = data.size() - i;
  if (rest > 0) {
    const std::uint32_t n = (data[i] << 16) | (rest == 2 ? data[i + 1] << 8 : 0);
    out.push_back(kAlphabet[(n >> 18) & 0x3F]);
    out.push_back(kAlphabet[(n >> 12) & 0x3F]);
    out.push_back(rest == 2 ? kAlphabet[(n >> 6) & 0x3F] : '=');
    out.push_back('=');
  }
  return out;
}

std::string newBase64Encoding(ByteView data) {
  return base64Encode(data);
}

std::optional<Bytes> dataFromBase64String(std::string_view text) {
  Bytes out;
  out.reserve(text.size() / 4 * 3);
  std::uint32_t accumulator = 0;
  int bits = 0;
  std::size_t padding = 0;
  for (const char c : text) {
    const std::int8_t value = kDecode[static_cast<unsigned char>(c)];
    if (value == kSkip)
      continue;
    if (c == '=') {
      ++padding;
      continue;
    }
    // Nothing but padding and blanks may follow padding.
    if (value == kInvalid || padding > 0)
      return std::nullopt;
    accumulator = (accumulator << 6) | static_cast<std::uint32_t>(value);
    bits += 6;
    if (bits >= 8) {
      bits -= 8;
      out.push_back(static_cast<std::uint8_t>(accumulator >> bits));
    }
  }
  // Leftover bits: 0 (complete), 2 (one byte short of a group) or 4; 6 cannot end a byte.
  if (bits >= 6 || padding > 2 || (padding > 0 && padding != static_cast<std::size_t>(bits / 2)))
    return std::nullopt;
  return out;
}

std::string encode64(std::string_view text) {
  return base64Encode(bytesOf(text));
}

std::optional<std::string> decode64(std::string_view text) {
  auto bytes = dataFromBase64String(text);
  if (!bytes)
    return std::nullopt;
  return std::string(bytes->begin(), bytes->end());
}

}  // namespace vorn

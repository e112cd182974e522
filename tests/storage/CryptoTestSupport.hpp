// Helpers shared by the crypto and key store suites.
#pragma once

#include <string>
#include <string_view>

#include "vorn/base/Bytes.hpp"

namespace vorn::cryptotest {

inline Bytes fromHex(std::string_view hex) {
  Bytes out;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
    out.push_back(static_cast<std::uint8_t>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16)));
  return out;
}

inline Bytes bytesOf(std::string_view text) {
  return Bytes(text.begin(), text.end());
}

}  // namespace vorn::cryptotest

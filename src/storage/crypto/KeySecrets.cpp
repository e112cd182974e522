#include "storage/crypto/KeySecrets.hpp"

#include "vorn/storage/crypto/Base64.hpp"
#include "vorn/storage/crypto/Hex.hpp"

namespace vorn::detail {
namespace {

constexpr std::size_t kShortestSecret = 8;

}  // namespace

void addKeySecrets(std::vector<std::string>& secrets, ByteView material) {
  if (material.size() < kShortestSecret)
    return;
  secrets.emplace_back(material.begin(), material.end());
  secrets.push_back(newHexStringFromBytes(material));
  secrets.push_back(base64Encode(material));
}

}  // namespace vorn::detail

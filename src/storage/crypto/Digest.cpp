// Digests through fetched algorithms: the one-shot helpers look the algorithm up on every
// call, which costs more than hashing a short buffer.

#include "vorn/storage/crypto/Digest.hpp"

#include <openssl/evp.h>

namespace vorn {
namespace {

// Never freed, like every process-wide crypto object here.
Bytes digest(const EVP_MD* md, ByteView data) {
  Bytes out(static_cast<std::size_t>(EVP_MD_get_size(md)));
  unsigned int length = 0;
  if (EVP_Digest(data.data(), data.size(), out.data(), &length, md, nullptr) != 1)
    return {};
  out.resize(length);
  return out;
}

}  // namespace

Bytes sha1(ByteView data) {
  static const EVP_MD* const md = EVP_MD_fetch(nullptr, "SHA1", nullptr);
  return digest(md, data);
}

Bytes sha224(ByteView data) {
  static const EVP_MD* const md = EVP_MD_fetch(nullptr, "SHA224", nullptr);
  return digest(md, data);
}

Bytes sha256(ByteView data) {
  static const EVP_MD* const md = EVP_MD_fetch(nullptr, "SHA256", nullptr);
  return digest(md, data);
}

Bytes sha256(std::string_view text) {
  return sha256(ByteView(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

}  // namespace vorn

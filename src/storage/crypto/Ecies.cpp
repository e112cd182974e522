// ECIES as the host platform's "standard X9.63 SHA-256 AES-GCM" variant, so that data
// encrypted on either side decrypts on the other:
//   Z   = ECDH(ephemeral private, recipient public), the x coordinate (32 bytes)
//   key = first 16 bytes of SHA-256(Z || 00000001 || ephemeral public point)  (X9.63 KDF)
//   AES-128-GCM with a 16-byte all-zero nonce and no associated data
//   out = ephemeral public point (65) || ciphertext || tag (16)

#include "storage/crypto/Ecies.hpp"

#include <openssl/evp.h>

#include <array>
#include <cstring>

#include "storage/crypto/KeyMaterial.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/platform/KeychainStatus.hpp"

namespace vorn::ecies {
namespace {

constexpr std::size_t kTagLength = 16;
constexpr std::size_t kNonceLength = 16;
constexpr std::size_t kGcmKeyLength = 16;

struct CipherContextDeleter {
  void operator()(EVP_CIPHER_CTX* context) const noexcept { EVP_CIPHER_CTX_free(context); }
};
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, CipherContextDeleter>;

// The KDF output key for the shared secret of `own` and `peer`; empty on failure.
Bytes derivedKey(EVP_PKEY* own, EVP_PKEY* peer, ByteView ephemeralPoint) {
  PKeyContext context(EVP_PKEY_CTX_new_from_pkey(nullptr, own, nullptr));
  std::size_t secretLength = kECScalarLength;
  Bytes input(kECScalarLength + 4);
  if (!context || EVP_PKEY_derive_init(context.get()) != 1 ||
      EVP_PKEY_derive_set_peer(context.get(), peer) != 1 ||
      EVP_PKEY_derive(context.get(), input.data(), &secretLength) != 1 ||
      secretLength != kECScalarLength)
    return {};
  input[kECScalarLength + 3] = 1;  // the big-endian counter, starting at 1
  input.insert(input.end(), ephemeralPoint.begin(), ephemeralPoint.end());
  Bytes digest(EVP_MAX_MD_SIZE);
  unsigned int digestLength = 0;
  const bool hashed = EVP_Digest(input.data(), input.size(), digest.data(), &digestLength,
                                 EVP_sha256(), nullptr) == 1;
  OPENSSL_cleanse(input.data(), input.size());
  if (!hashed)
    return {};
  digest.resize(kGcmKeyLength);
  return digest;
}

CipherContext gcmContext(const Bytes& key, bool encrypt) {
  static const std::array<unsigned char, kNonceLength> kNonce{};
  CipherContext context(EVP_CIPHER_CTX_new());
  if (!context ||
      EVP_CipherInit_ex(context.get(), EVP_aes_128_gcm(), nullptr, nullptr, nullptr, encrypt) !=
          1 ||
      EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_IVLEN, kNonceLength, nullptr) != 1 ||
      EVP_CipherInit_ex(context.get(), nullptr, nullptr, key.data(), kNonce.data(), encrypt) != 1)
    return nullptr;
  return context;
}

// One update over the whole input; the caller finishes with the tag.
bool runGcm(EVP_CIPHER_CTX* context, ByteView in, Bytes& out) {
  int written = 0;
  const std::size_t start = out.size();
  out.resize(start + in.size());
  return in.empty() || (EVP_CipherUpdate(context, out.data() + start, &written, in.data(),
                                         static_cast<int>(in.size())) == 1 &&
                        static_cast<std::size_t>(written) == in.size());
}

std::optional<Bytes> seal(ByteView data, const KeyRef& publicKey) {
  if (!publicKey || publicKey->isRsa() || data.size() > INT32_MAX)
    return std::nullopt;
  PKey ephemeral = generateEcKey();
  Bytes out = ephemeral ? ecExternal(ephemeral.get(), false) : Bytes{};
  if (out.size() != kECPointLength)
    return std::nullopt;
  const Bytes key = derivedKey(ephemeral.get(), publicKey->native().key.get(), out);
  CipherContext context = key.empty() ? nullptr : gcmContext(key, true);
  std::array<unsigned char, kTagLength> none;  // GCM's final step writes no bytes
  int finalWritten = 0;
  if (!context || !runGcm(context.get(), data, out) ||
      EVP_CipherFinal_ex(context.get(), none.data(), &finalWritten) != 1)
    return std::nullopt;
  const std::size_t tagAt = out.size();
  out.resize(tagAt + kTagLength);
  if (EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_GET_TAG, kTagLength, out.data() + tagAt) != 1)
    return std::nullopt;
  return out;
}

std::optional<Bytes> openSealed(ByteView data, const KeyRef& privateKey, OSStatus& status) {
  status = errSecParam;
  if (!privateKey || privateKey->isRsa() || !privateKey->isPrivate() ||
      data.size() < kECPointLength + kTagLength || data.size() > INT32_MAX)
    return std::nullopt;
  const ByteView point = data.first(kECPointLength);
  const ByteView sealed = data.subspan(kECPointLength, data.size() - kECPointLength - kTagLength);
  Bytes tag(data.end() - kTagLength, data.end());
  PKey ephemeral = ecPublicKeyFromPoint(point);
  const Bytes key =
      ephemeral ? derivedKey(privateKey->native().key.get(), ephemeral.get(), point) : Bytes{};
  CipherContext context = key.empty() ? nullptr : gcmContext(key, false);
  if (!context)
    return std::nullopt;
  status = errSecDecode;
  Bytes out;
  std::array<unsigned char, kTagLength> none;
  int finalWritten = 0;
  if (!runGcm(context.get(), sealed, out) ||
      EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_TAG, kTagLength, tag.data()) != 1 ||
      EVP_CipherFinal_ex(context.get(), none.data(), &finalWritten) != 1) {
    OPENSSL_cleanse(out.data(), out.size());
    return std::nullopt;
  }
  status = errSecSuccess;
  return out;
}

}  // namespace

std::optional<Bytes> encrypt(ByteView data, const KeyRef& publicKey) {
  auto out = seal(data, publicKey);
  if (!out) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Error encrypting data with EC key. Error code: " + std::to_string(errSecParam));
  }
  return out;
}

std::optional<Bytes> decrypt(ByteView data, const KeyRef& privateKey) {
  OSStatus status = errSecSuccess;
  auto out = openSealed(data, privateKey, status);
  if (!out) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Error decrypting data with EC key. Error code: " + std::to_string(status));
  }
  return out;
}

}  // namespace vorn::ecies

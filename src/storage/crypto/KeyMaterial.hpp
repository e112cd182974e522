// The crypto library's side of AsymmetricKey: making keys, and converting them from and to
// the keychain's external representation (see AsymmetricKey.hpp).
#pragma once

#include <openssl/evp.h>

#include <memory>

#include "vorn/storage/crypto/AsymmetricKey.hpp"

namespace vorn {

struct PKeyDeleter {
  void operator()(EVP_PKEY* key) const noexcept { EVP_PKEY_free(key); }
};
using PKey = std::unique_ptr<EVP_PKEY, PKeyDeleter>;

struct PKeyContextDeleter {
  void operator()(EVP_PKEY_CTX* context) const noexcept { EVP_PKEY_CTX_free(context); }
};
using PKeyContext = std::unique_ptr<EVP_PKEY_CTX, PKeyContextDeleter>;

struct AsymmetricKey::Native {
  PKey key;
  bool rsa = false;
  bool isPrivate = false;
};

inline constexpr std::size_t kECPointLength = 65;
inline constexpr std::size_t kECScalarLength = 32;

KeyRef makeKeyRef(PKey key, bool rsa, bool isPrivate);
/// A new RSA key of `bits` bits / a new P-256 key; null on failure.
PKey generateRsaKey(std::size_t bits);
PKey generateEcKey();
/// The external bytes of one half of a generated pair; empty on failure.
Bytes rsaExternal(EVP_PKEY* key, bool isPrivate);
Bytes ecExternal(EVP_PKEY* key, bool isPrivate);
/// Keys from external bytes; null when the bytes do not form a key of that kind.
KeyRef rsaKeyFromExternal(ByteView bytes, bool isPrivate);
KeyRef ecKeyFromExternal(ByteView bytes, bool isPrivate);
PKey ecPublicKeyFromPoint(ByteView point);

}  // namespace vorn

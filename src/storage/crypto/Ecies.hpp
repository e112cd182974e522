// ECIES with P-256 keys: the routine behind VORNSDKCryptoUtils' EC encryption. The output is
// the ephemeral public point (65 bytes), the ciphertext, then the 16-byte tag. Failures give
// no value and an `error` line in category `encryption`. Thread-safe.
#pragma once

#include <optional>

#include "vorn/base/Bytes.hpp"
#include "vorn/storage/crypto/AsymmetricKey.hpp"

namespace vorn::ecies {

std::optional<Bytes> encrypt(ByteView data, const KeyRef& publicKey);
std::optional<Bytes> decrypt(ByteView data, const KeyRef& privateKey);

}  // namespace vorn::ecies

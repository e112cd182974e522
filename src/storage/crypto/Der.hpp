// The little DER the RSA keys need: lengths, and wrapping a PKCS#1 RSAPublicKey in a
// SubjectPublicKeyInfo for rsaEncryption. Pure functions.
#pragma once

#include <cstddef>

#include "vorn/base/Bytes.hpp"

namespace vorn::der {

/// Appends the DER encoding of `length` to `out` and returns how many bytes it took.
std::size_t encodeLength(Bytes& out, std::size_t length);
Bytes rsaPublicKeyInfo(ByteView rawPublicKey);

}  // namespace vorn::der

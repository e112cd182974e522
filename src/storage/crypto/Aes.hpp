// AES-CBC with PKCS#7 padding over one whole buffer: the routine behind the AES operations
// of VORNSDKCryptoUtils. The key is cut or zero-padded to `keyLength` (16 or 32; anything
// else fails set-up) and the vector to one block; no vector means a zero block. Failures give
// no value and an `error` line in category `encryption`. Thread-safe.
#pragma once

#include <cstddef>
#include <optional>

#include "vorn/base/Bytes.hpp"

namespace vorn::aes {

std::optional<Bytes> encrypt(ByteView data, std::optional<ByteView> key, std::size_t keyLength,
                             std::optional<ByteView> iv);
std::optional<Bytes> decrypt(ByteView data, std::optional<ByteView> key, std::size_t keyLength,
                             std::optional<ByteView> iv);

}  // namespace vorn::aes

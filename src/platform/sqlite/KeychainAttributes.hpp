// The further attributes of a key store item as keychain.db keeps them: one CBOR map from
// each name to a text or a byte string.
//
// The bytes come back from a file that may have been damaged or written by another program,
// and the JSON library's CBOR reader recurses once per nesting level and throws on bad
// input; so decoding first checks the framing and depth without recursion, catches whatever
// the reader throws, and answers nothing for anything but such a map.
//
// Both functions carry VORN_API only so that the fuzz target, which links the library with
// its hidden symbols, can call them through this header; they are not part of the public
// API. Both may be called from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Export.hpp"
#include "vorn/platform/KeychainItem.hpp"

namespace vorn::platform {

VORN_API std::vector<std::uint8_t> encodeKeychainAttributes(const KeychainDictionary& attributes);

/// The attributes, or nothing when `cbor` is not exactly one map of texts and byte strings.
VORN_API std::optional<KeychainDictionary> decodeKeychainAttributes(ByteView cbor) noexcept;

}  // namespace vorn::platform

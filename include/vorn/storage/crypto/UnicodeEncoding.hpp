// The host platform's "unicode" text encoding, reproduced byte for byte.
//
// Encrypted text at rest is the ciphertext of this encoding, so a byte changed here makes
// every stored secure preference unreadable. Encoding writes the byte-order mark FF FE and
// then UTF-16 code units, little endian. Decoding honours either byte-order mark; without
// one it reads the machine's order (little endian on every target), as the platform does.
//
// Pure functions, thread-safe.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vorn/base/Export.hpp"

namespace vorn {

/// FF FE followed by the UTF-16LE form of `utf8`; no value when `utf8` is not valid UTF-8.
VORN_API std::optional<std::vector<std::uint8_t>> encodeUnicode(std::string_view utf8);

/// The UTF-8 text of UTF-16 bytes as described above; no value for an odd length or an
/// unpaired surrogate. Empty input and a lone byte-order mark both give the empty text.
VORN_API std::optional<std::string> decodeUnicode(std::span<const std::uint8_t> bytes);

}  // namespace vorn

// SHA-1, SHA-224 and SHA-256 digests of byte buffers and of the UTF-8 bytes of a text, as raw
// digest bytes (20, 28 and 32 bytes). Thread-safe: the digest algorithms are looked up once
// per process and shared read-only.
#pragma once

#include <string_view>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Export.hpp"

namespace vorn {

VORN_API Bytes sha1(ByteView data);
VORN_API Bytes sha224(ByteView data);
VORN_API Bytes sha256(ByteView data);
/// SHA-256 of the UTF-8 bytes of the text.
VORN_API Bytes sha256(std::string_view text);

}  // namespace vorn

// Standard base64 (RFC 4648 alphabet, "=" padding, no line breaks) for byte buffers and for
// the UTF-8 bytes of texts. Pure functions, safe from any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Export.hpp"

namespace vorn {

/// The base64 text of the bytes.
VORN_API std::string base64Encode(ByteView data);
/// Same as base64Encode; kept under the name callers of the keychain layer know.
VORN_API std::string newBase64Encoding(ByteView data);
/// The bytes of a base64 text. Line breaks and blanks are skipped; any other character
/// outside the alphabet, or a text that ends in the middle of a byte, gives no value.
VORN_API std::optional<Bytes> dataFromBase64String(std::string_view text);

/// The base64 text of the UTF-8 bytes of `text`.
VORN_API std::string encode64(std::string_view text);
/// The decoded bytes of a base64 text taken as UTF-8 text; no value when not base64.
VORN_API std::optional<std::string> decode64(std::string_view text);

}  // namespace vorn

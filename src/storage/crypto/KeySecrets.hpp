// Key material as secrets of the logger (VORNSdkLogger::setSecrets): the forms in which its
// bytes could end up in a log line. Pure and thread-safe.
#pragma once

#include <string>
#include <vector>

#include "vorn/base/Bytes.hpp"

namespace vorn::detail {

/// Adds `material` as raw bytes, hexadecimal text and base64 text. Material under 8 bytes,
/// which no cipher takes as a key, is left out: as a secret it would scrub common text.
void addKeySecrets(std::vector<std::string>& secrets, ByteView material);

}  // namespace vorn::detail

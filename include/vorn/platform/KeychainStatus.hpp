// The 32-bit status codes that every key store call answers with.
//
// The values are the host platform's (0 is success, negatives are errors), so a status
// logged or handed to an app means the same thing on every target. A backend may answer
// any of them; the in-memory test backend can be told to.
#pragma once

#include <cstdint>
#include <string>

#include "vorn/base/Export.hpp"

namespace vorn {

using OSStatus = std::int32_t;

inline constexpr OSStatus errSecSuccess = 0;
inline constexpr OSStatus errSecUnimplemented = -4;
inline constexpr OSStatus errSecParam = -50;
inline constexpr OSStatus errSecAllocate = -108;
inline constexpr OSStatus errSecNotAvailable = -25291;
inline constexpr OSStatus errSecAuthFailed = -25293;
inline constexpr OSStatus errSecDuplicateItem = -25299;
inline constexpr OSStatus errSecItemNotFound = -25300;
inline constexpr OSStatus errSecInteractionNotAllowed = -25308;
inline constexpr OSStatus errSecDecode = -26275;

/// The status's constant name ("errSecItemNotFound"), or "Unknown status code (<n>)".
VORN_API std::string keychainStatusName(OSStatus status);

}  // namespace vorn

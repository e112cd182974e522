// The platform's file-protection levels: when the files the library writes may be read
// while the device is locked. The setting is SDK-wide (StorageManager holds it); hosts
// without data protection classes keep it only so that modules can read it back.
#pragma once

#include <optional>
#include <string_view>

#include "vorn/base/Export.hpp"

namespace vorn {

enum class FileProtectionType : int {
  none = 0,
  complete = 1,
  completeUnlessOpen = 2,
  completeUntilFirstUserAuthentication = 3,
};

/// The platform's name: "NSFileProtectionNone", "NSFileProtectionComplete",
/// "NSFileProtectionCompleteUnlessOpen", "NSFileProtectionCompleteUntilFirstUserAuthentication".
VORN_API std::string_view rawValue(FileProtectionType type) noexcept;

/// One of the four names above, exactly; anything else gives no value.
VORN_API std::optional<FileProtectionType> fileProtectionTypeFrom(std::string_view raw) noexcept;

}  // namespace vorn

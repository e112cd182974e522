#include "vorn/storage/prefs/FileProtectionType.hpp"

#include <array>

namespace vorn {

namespace {

constexpr std::array<std::string_view, 4> kRawValues{
    "NSFileProtectionNone", "NSFileProtectionComplete", "NSFileProtectionCompleteUnlessOpen",
    "NSFileProtectionCompleteUntilFirstUserAuthentication"};

}  // namespace

std::string_view rawValue(FileProtectionType type) noexcept {
  return kRawValues[static_cast<std::size_t>(type)];
}

std::optional<FileProtectionType> fileProtectionTypeFrom(std::string_view raw) noexcept {
  for (std::size_t i = 0; i < kRawValues.size(); ++i) {
    if (kRawValues[i] == raw) {
      return static_cast<FileProtectionType>(i);
    }
  }
  return std::nullopt;
}

}  // namespace vorn

// The SDK-wide file-protection setting that StorageManager holds.
#include <atomic>

#include "vorn/storage/prefs/StorageManager.hpp"

namespace vorn {
namespace {

constexpr int kNoProtection = -1;

// The SDK-wide file-protection type as its integer value, or kNoProtection.
std::atomic<int> gFileProtectionType{
    static_cast<int>(FileProtectionType::completeUntilFirstUserAuthentication)};

}  // namespace

void StorageManager::setFileSystemProtectionType(
    std::optional<FileProtectionType> fileProtectionType) {
  gFileProtectionType.store(
      fileProtectionType ? static_cast<int>(*fileProtectionType) : kNoProtection,
      std::memory_order_release);
}

std::optional<FileProtectionType> StorageManager::fileSystemProtectionType() {
  const int value = gFileProtectionType.load(std::memory_order_acquire);
  if (value == kNoProtection) {
    return std::nullopt;
  }
  return static_cast<FileProtectionType>(value);
}

}  // namespace vorn

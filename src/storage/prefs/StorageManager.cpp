#include "vorn/storage/prefs/StorageManager.hpp"

#include <atomic>
#include <utility>

#include "vorn/base/Uuid.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/platform/Platform.hpp"

namespace vorn {

namespace {

constexpr int kNoProtection = -1;

// The SDK-wide file-protection type as its integer value, or kNoProtection.
std::atomic<int> gFileProtectionType{
    static_cast<int>(FileProtectionType::completeUntilFirstUserAuthentication)};

std::string loadOrCreateRegistrationId(SecurePrefs& registration) {
  if (std::optional<std::string> existing =
          registration.stringFor(StorageManager::kRegistrationIdKey)) {
    VORN_LOG_DEBUG(
        LoggerCategory::storage,
        "StorageManager was initialized with existing registration id (" + *existing + ").");
    return std::move(*existing);
  }
  std::string created = makeUuidString();
  registration.setString(created, StorageManager::kRegistrationIdKey);
  VORN_LOG_DEBUG(LoggerCategory::storage,
                 "StorageManager was initialized with new registration id (" + created + ").");
  return created;
}

}  // namespace

StorageManager::StorageManager(std::shared_ptr<EncryptionManager> encryptionManager,
                               std::string moduleAppId)
    : moduleAppId_(std::move(moduleAppId)),
      encryptionManager_(std::move(encryptionManager)),
      defaults_(Platform::current()->defaults) {
  SecurePrefs registration(defaults_->suite(std::string(kRegistrationSuite)), encryptionManager_);
  std::string id = loadOrCreateRegistrationId(registration);
  registrationId_.mutate([&](std::string& value) { value = std::move(id); });
}

std::string StorageManager::getRegistrationId() const {
  return registrationId_.read();
}

std::shared_ptr<SecurePrefs> StorageManager::getOrCreateSecurePrefs(std::string_view name) const {
  return std::make_shared<SecurePrefs>(defaults_->suite(getFilenameForModuleInstallation(name)),
                                       encryptionManager_);
}

std::string StorageManager::getFilenameForModuleInstallation(std::string_view fileName) const {
  std::string out(kStorageNamePrefix);
  out += moduleAppId_;
  out += '_';
  out += getRegistrationId();
  out += '_';
  out += fileName;
  return out;
}

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

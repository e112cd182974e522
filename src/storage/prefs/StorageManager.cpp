#include "vorn/storage/prefs/StorageManager.hpp"

#include <utility>

#include "vorn/base/Uuid.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/platform/Platform.hpp"

namespace vorn {
namespace {

// The stored id. A manager that will never have a key reads nothing, stores nothing and so
// cannot lose anything: its id is absent, and this launch gets one of its own.
ReadResult<std::string> readRegistration(const SecurePrefs& registration) {
  auto stored = registration.readString(StorageManager::kRegistrationIdKey);
  if (stored.isFound()) {
    VORN_LOG_DEBUG(
        LoggerCategory::storage,
        "StorageManager was initialized with existing registration id (" + stored.value() + ").");
  }
  if (stored.isError() && registration.encryptionManager()->isKeyless())
    return ReadResult<std::string>::absent();
  return stored;
}

}  // namespace

StorageManager::StorageManager(std::shared_ptr<EncryptionManager> encryptionManager,
                               std::string moduleAppId)
    : StorageManager(std::move(encryptionManager), std::move(moduleAppId), Platform::current()) {}

StorageManager::StorageManager(std::shared_ptr<EncryptionManager> encryptionManager,
                               std::string moduleAppId,
                               const std::shared_ptr<const Platform>& platform)
    : StorageManager(std::move(encryptionManager), std::move(moduleAppId), platform->defaults,
                     platform->keychain) {}

StorageManager::StorageManager(std::shared_ptr<EncryptionManager> encryptionManager,
                               std::string moduleAppId, std::shared_ptr<DefaultsStore> defaults,
                               std::shared_ptr<KeychainStore> keychain)
    : moduleAppId_(std::move(moduleAppId)),
      encryptionManager_(std::move(encryptionManager)),
      defaults_(std::move(defaults)),
      keychain_(std::move(keychain)) {
  if (!encryptionManager_) {
    VORN_LOG_ERROR(LoggerCategory::storage,
                   "StorageManager of app " + moduleAppId_ +
                       " was given no encryption manager; nothing will be stored or read.");
    return;
  }
  registration();
}

std::optional<std::string> StorageManager::registration() const {
  if (auto known = registrationId_.read())
    return known;
  if (!encryptionManager_)
    return std::nullopt;
  auto loaded = loadOrCreateRegistrationId();
  if (!loaded.isFound()) {
    VORN_LOG_ERROR(LoggerCategory::storage, "StorageManager could not read the registration id (" +
                                                std::to_string(loaded.status()) +
                                                "); it will be read again on next use.");
    return std::nullopt;
  }
  registrationId_.mutate([&](std::optional<std::string>& value) {
    if (!value)
      value = loaded.value();
  });
  return registrationId_.read();
}

ReadResult<std::string> StorageManager::loadOrCreateRegistrationId() const {
  SecurePrefs registration(defaults_->suite(std::string(kRegistrationSuite)), encryptionManager_);
  auto existing = readRegistration(registration);
  if (!existing.isAbsent())
    return existing;
  auto result = ReadResult<std::string>::error(errSecNotAvailable);
  const OSStatus section = keychain_->exclusively([&] { result = storedOrNewRegistrationId(); });
  return section == errSecSuccess ? result : ReadResult<std::string>::error(section);
}

ReadResult<std::string> StorageManager::storedOrNewRegistrationId() const {
  // Read again under the lock: another launch of this module may have stored an id meanwhile,
  // and a second id would hide everything stored under the first.
  SecurePrefs registration(defaults_->suite(std::string(kRegistrationSuite)), encryptionManager_);
  auto stored = readRegistration(registration);
  if (!stored.isAbsent())
    return stored;
  std::string created = makeUuidString();
  registration.setString(created, kRegistrationIdKey);
  VORN_LOG_DEBUG(LoggerCategory::storage,
                 "StorageManager was initialized with new registration id (" + created + ").");
  return ReadResult<std::string>::found(std::move(created));
}

std::string StorageManager::getRegistrationId() const {
  return registration().value_or("");
}

std::shared_ptr<SecurePrefs> StorageManager::getOrCreateSecurePrefs(std::string_view name) const {
  // Without the registration id the module's storage cannot be named: hand out storage that
  // holds nothing rather than one under a wrong name.
  const bool named = registration().has_value();
  return std::make_shared<SecurePrefs>(defaults_->suite(getFilenameForModuleInstallation(name)),
                                       named ? encryptionManager_ : nullptr);
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

}  // namespace vorn

#include "vorn/storage/keychain/KeychainItems.hpp"

#include "storage/keychain/PlatformShared.hpp"
#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"

namespace vorn {

KeychainItems::KeychainItems(std::shared_ptr<KeychainStore> store) : store_(std::move(store)) {}

std::shared_ptr<KeychainItems> KeychainItems::shared() {
  return detail::sharedOnCurrentPlatform<KeychainItems>(
      [](const Platform& platform) { return std::make_shared<KeychainItems>(platform.keychain); });
}

std::pair<std::shared_ptr<VORNKeychainItemWrapper>, bool> KeychainItems::cachedOrMade(
    std::string_view identifier, std::optional<std::string_view> account) {
  const std::string key = VORNKeychainItemWrapper::itemDictKeyForIdentifier(identifier, account);
  {
    std::lock_guard lock(mutex_);
    if (const auto cached = items_.find(key); cached != items_.end())
      return {cached->second, false};
  }
  // Made (which reads the store) outside the lock, so that no thread holds it while the store
  // keeps it waiting; when two threads race, the first one cached wins.
  auto made = std::make_shared<VORNKeychainItemWrapper>(store_, identifier, account);
  std::lock_guard lock(mutex_);
  auto& slot = items_[key];
  const bool isNew = !slot;
  if (isNew)
    slot = std::move(made);
  return {slot, isNew};
}

std::shared_ptr<VORNKeychainItemWrapper> KeychainItems::item(
    std::string_view identifier, std::optional<std::string_view> account) {
  return cachedOrMade(identifier, account).first;
}

ReadResult<std::shared_ptr<VORNKeychainItemWrapper>> KeychainItems::readItem(
    std::string_view identifier, std::optional<std::string_view> account) {
  auto [item, isNew] = cachedOrMade(identifier, account);
  const OSStatus status = isNew ? item->readStatus() : item->reload();
  if (status != errSecSuccess && status != errSecItemNotFound)
    return ReadResult<std::shared_ptr<VORNKeychainItemWrapper>>::error(status);
  return ReadResult<std::shared_ptr<VORNKeychainItemWrapper>>::found(std::move(item));
}

void KeychainItems::reset() {
  std::lock_guard lock(mutex_);
  items_.clear();
}

OSStatus KeychainItems::exclusively(const std::function<void()>& body) {
  return store_->exclusively(body);
}

}  // namespace vorn

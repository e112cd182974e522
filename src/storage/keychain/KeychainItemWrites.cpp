// The item wrapper's writes: every one runs in an exclusive section of the key store, taken
// before the item's own lock.
#include "storage/keychain/KeychainDictionaries.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"

namespace vorn {
namespace {

// "<operation>: <message><status text>.", as the item exception.
void logException(std::string_view operation, std::string_view message, OSStatus status) {
  VORNKeychainItemWrapper::logKeychainItemExceptionWithCode(
      1, std::string(operation) + ": " + std::string(message) +
             VORNKeychainItemWrapper::keychainErrorCodeString(status) + ".");
}

// Runs `write` in the store's section; the write's status, or the section's when it failed.
template <class Write>
OSStatus inSection(KeychainStore& store, Write write) {
  OSStatus status = errSecSuccess;
  const OSStatus section = store.exclusively([&] { status = write(); });
  return section == errSecSuccess ? status : section;
}

}  // namespace

OSStatus VORNKeychainItemWrapper::setObject(std::optional<KeychainValue> value,
                                            std::string_view key) {
  reloadIfUnread();
  if (value && holds(*value, key))
    return errSecSuccess;
  return inSection(*store_, [&] { return setObjectInSection(std::move(value), key); });
}

bool VORNKeychainItemWrapper::holds(const KeychainValue& value, std::string_view key) const {
  std::lock_guard lock(mutex_);
  const auto entry = keychainData_.find(key);
  if (entry == keychainData_.end() || entry->second != value)
    return false;
  VORN_LOG_DEBUG(LoggerCategory::encryption,
                 "Value already stored in the keychain. No action taken.");
  return true;
}

OSStatus VORNKeychainItemWrapper::setObjectInSection(std::optional<KeychainValue> value,
                                                     std::string_view key) {
  std::lock_guard lock(mutex_);
  const auto entry = keychainData_.find(key);
  if (!value) {
    if (entry != keychainData_.end())
      keychainData_.erase(entry);
    return writeInSection();
  }
  if (holds(*value, key))
    return errSecSuccess;
  std::optional<KeychainValue> previous;
  if (entry != keychainData_.end())
    previous = entry->second;
  keychainData_.insert_or_assign(std::string(key), *value);
  const OSStatus status = writeInSection();
  if (status == errSecSuccess)
    return status;
  // Only a value that was there before is put back; a new value stays in memory.
  if (previous)
    keychainData_.insert_or_assign(std::string(key), *previous);
  logException("setObject:forKey:", "Error saving value to the keychain: ", status);
  return status;
}

OSStatus VORNKeychainItemWrapper::setValueData(std::optional<KeychainData> data) {
  if (!data)
    return setObject(std::nullopt, kSecValueData);
  return setObject(KeychainValue(std::move(*data)), kSecValueData);
}

OSStatus VORNKeychainItemWrapper::setValueString(std::optional<std::string_view> value) {
  if (!value)
    return setObject(std::nullopt, kSecValueData);
  return setObject(KeychainValue(std::string(*value)), kSecValueData);
}

bool VORNKeychainItemWrapper::resetKeychainItem() {
  bool reset = false;
  const OSStatus section = store_->exclusively([&] {
    std::lock_guard lock(mutex_);
    ++changes_;
    KeychainQuery query;
    query.service = keychainQuery_.service;
    query.account = keychainQuery_.account;
    const OSStatus status = store_->remove(query);
    if (status != errSecSuccess && status != errSecItemNotFound) {
      logException("resetKeychainItem", "Error deleting keychain item: ", status);
      return;
    }
    keychainData_ = dictionaryItemFromKeychain();
    reset = true;
  });
  if (section != errSecSuccess)
    logException("resetKeychainItem", "Error deleting keychain item: ", section);
  return reset;
}

KeychainDictionary VORNKeychainItemWrapper::dictionaryToSecItemFormat(
    const KeychainDictionary& dictionary) const {
  KeychainDictionary formatted = dictionary;
  formatted[std::string(kSecClass)] = std::string(kSecClassGenericPassword);
  formatted[std::string(kSecAttrAccessible)] =
      std::string(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
  const auto value = formatted.find(kSecValueData);
  if (value != formatted.end()) {
    if (const auto* text = std::get_if<std::string>(&value->second))
      value->second = KeychainData(text->begin(), text->end());
  }
  return formatted;
}

OSStatus VORNKeychainItemWrapper::writeToKeychain() {
  return inSection(*store_, [&] {
    std::lock_guard lock(mutex_);
    return writeInSection();
  });
}

OSStatus VORNKeychainItemWrapper::writeInSection() {
  ++changes_;
  std::vector<KeychainItem> found;
  OSStatus status = store_->copyMatching(keychainQuery_, found);
  const KeychainItem item = detail::itemFromDictionary(dictionaryToSecItemFormat(keychainData_));
  if (status != errSecSuccess || found.empty()) {
    status = store_->add(item);
    if (status != errSecSuccess)
      logException("writeToKeychain", "Error adding keychain item: ", status);
  } else {
    // The found item's own service and account name it exactly (an absent account is the
    // empty one), so the update touches that item only.
    KeychainQuery updateQuery;
    updateQuery.service = found.front().service.value_or(std::string());
    updateQuery.account = found.front().account.value_or(std::string());
    status = store_->update(updateQuery, item);
    if (status != errSecSuccess)
      logException("writeToKeychain", "Error updating keychain item: ", status);
  }
  keychainData_[std::string(kSecAttrAccessible)] =
      std::string(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
  return status;
}

}  // namespace vorn

#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"

#include <utf8proc.h>

#include <map>

#include "storage/keychain/KeychainDictionaries.hpp"
#include "storage/keychain/KeychainWriteLock.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/platform/Platform.hpp"

namespace vorn {
namespace {

// The cache of shared item objects, guarded by its own mutex. Never destroyed.
struct ItemCache {
  std::mutex mutex;
  std::map<std::string, std::shared_ptr<VORNKeychainItemWrapper>, std::less<>>
      items;  // guarded by mutex
};

ItemCache& itemCache() {
  static auto* cache = new ItemCache();
  return *cache;
}

// "<operation>: <message><status text><ending>", as the item exception.
void logException(std::string_view operation, std::string_view message, OSStatus status,
                  std::string_view ending = ".") {
  VORNKeychainItemWrapper::logKeychainItemExceptionWithCode(
      1, std::string(operation) + ": " + std::string(message) +
             VORNKeychainItemWrapper::keychainErrorCodeString(status) + std::string(ending));
}

std::optional<std::string> decodedUtf8(const KeychainData& bytes) {
  const auto* cursor = reinterpret_cast<const utf8proc_uint8_t*>(bytes.data());
  auto remaining = static_cast<utf8proc_ssize_t>(bytes.size());
  while (remaining > 0) {
    utf8proc_int32_t codePoint = 0;
    const utf8proc_ssize_t length = utf8proc_iterate(cursor, remaining, &codePoint);
    if (length <= 0)
      return std::nullopt;
    cursor += length;
    remaining -= length;
  }
  return std::string(bytes.begin(), bytes.end());
}

std::shared_ptr<KeychainStore> keychain() {
  return Platform::current()->keychain;
}

}  // namespace

namespace detail {

std::recursive_mutex& keychainWriteLock() {
  static auto* lock = new std::recursive_mutex();
  return *lock;
}

}  // namespace detail

std::shared_ptr<VORNKeychainItemWrapper> VORNKeychainItemWrapper::itemWithIdentifier(
    std::string_view identifier, std::optional<std::string_view> account) {
  const std::string key = itemDictKeyForIdentifier(identifier, account);
  ItemCache& cache = itemCache();
  std::lock_guard lock(cache.mutex);
  auto& item = cache.items[key];
  if (!item)
    item = std::make_shared<VORNKeychainItemWrapper>(identifier, account);
  return item;
}

std::string VORNKeychainItemWrapper::itemDictKeyForIdentifier(
    std::string_view identifier, std::optional<std::string_view> account) {
  return std::string(identifier) + "_" + std::string(account.value_or("(null)"));
}

void VORNKeychainItemWrapper::resetInMemoryKeychainItems() {
  ItemCache& cache = itemCache();
  std::lock_guard lock(cache.mutex);
  cache.items.clear();
}

VORNKeychainItemWrapper::VORNKeychainItemWrapper(std::string_view identifier,
                                                 std::optional<std::string_view> account) {
  keychainQuery_.service = std::string(identifier);
  if (account)
    keychainQuery_.account = std::string(*account);
  keychainQuery_.matchLimit = MatchLimit::one;
  keychainQuery_.returnAttributes = true;
  keychainQuery_.returnData = true;
  keychainData_ = dictionaryItemFromKeychain();
}

KeychainDictionary VORNKeychainItemWrapper::keychainData() const {
  std::lock_guard lock(mutex_);
  return keychainData_;
}

KeychainDictionary VORNKeychainItemWrapper::dictionaryItemFromKeychain() const {
  std::vector<KeychainItem> found;
  const OSStatus status = keychain()->copyMatching(keychainQuery_, found);
  if (status == errSecSuccess && !found.empty())
    return detail::dictionaryFromItem(found.front());
  if (status != errSecItemNotFound)
    logException("dictionaryItemFromKeychain",
                 "Error attempting to look up keychain item: ", status, "");
  KeychainDictionary placeholder;
  placeholder[std::string(kSecAttrService)] = *keychainQuery_.service;
  if (keychainQuery_.account)
    placeholder[std::string(kSecAttrAccount)] = *keychainQuery_.account;
  return placeholder;
}

std::optional<KeychainValue> VORNKeychainItemWrapper::objectForKey(std::string_view key) const {
  std::lock_guard lock(mutex_);
  const auto entry = keychainData_.find(key);
  if (entry == keychainData_.end())
    return std::nullopt;
  return entry->second;
}

std::optional<std::string> VORNKeychainItemWrapper::stringForKey(std::string_view key) const {
  auto value = objectForKey(key);
  if (!value)
    return std::nullopt;
  if (auto* text = std::get_if<std::string>(&*value))
    return std::move(*text);
  return decodedUtf8(std::get<KeychainData>(*value));
}

OSStatus VORNKeychainItemWrapper::setObject(std::optional<KeychainValue> value,
                                            std::string_view key) {
  std::lock_guard lock(mutex_);
  const auto entry = keychainData_.find(key);
  if (!value) {
    if (entry != keychainData_.end())
      keychainData_.erase(entry);
    return writeToKeychain();
  }
  std::optional<KeychainValue> previous;
  if (entry != keychainData_.end()) {
    if (entry->second == *value) {
      VORN_LOG_DEBUG(LoggerCategory::encryption,
                     "Value already stored in the keychain. No action taken.");
      return errSecSuccess;
    }
    previous = entry->second;
  }
  keychainData_.insert_or_assign(std::string(key), *value);
  const OSStatus status = writeToKeychain();
  if (status == errSecSuccess)
    return status;
  // Only a value that was there before is put back; a new value stays in memory.
  if (previous)
    keychainData_.insert_or_assign(std::string(key), *previous);
  logException("setObject:forKey:", "Error saving value to the keychain: ", status);
  return status;
}

std::optional<KeychainData> VORNKeychainItemWrapper::valueData() const {
  auto value = objectForKey(kSecValueData);
  if (!value)
    return std::nullopt;
  if (auto* text = std::get_if<std::string>(&*value))
    return KeychainData(text->begin(), text->end());
  return std::get<KeychainData>(std::move(*value));
}

OSStatus VORNKeychainItemWrapper::setValueData(std::optional<KeychainData> data) {
  if (!data)
    return setObject(std::nullopt, kSecValueData);
  return setObject(KeychainValue(std::move(*data)), kSecValueData);
}

std::optional<std::string> VORNKeychainItemWrapper::valueString() const {
  return stringForKey(kSecValueData);
}

OSStatus VORNKeychainItemWrapper::setValueString(std::optional<std::string_view> value) {
  if (!value)
    return setObject(std::nullopt, kSecValueData);
  return setObject(KeychainValue(std::string(*value)), kSecValueData);
}

bool VORNKeychainItemWrapper::resetKeychainItem() {
  std::lock_guard itemLock(mutex_);
  std::lock_guard classLock(detail::keychainWriteLock());
  KeychainQuery query;
  query.service = keychainQuery_.service;
  query.account = keychainQuery_.account;
  const OSStatus status = keychain()->remove(query);
  if (status != errSecSuccess && status != errSecItemNotFound) {
    logException("resetKeychainItem", "Error deleting keychain item: ", status);
    return false;
  }
  keychainData_ = dictionaryItemFromKeychain();
  return true;
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
  std::lock_guard itemLock(mutex_);
  std::lock_guard classLock(detail::keychainWriteLock());
  const auto store = keychain();
  std::vector<KeychainItem> found;
  OSStatus status = store->copyMatching(keychainQuery_, found);
  if (status != errSecSuccess || found.empty()) {
    status = store->add(detail::itemFromDictionary(dictionaryToSecItemFormat(keychainData_)));
    if (status != errSecSuccess)
      logException("writeToKeychain", "Error adding keychain item: ", status);
  } else {
    // The found item's own service and account name it exactly (an absent account is the
    // empty one), so the update touches that item only.
    KeychainQuery updateQuery;
    updateQuery.service = found.front().service.value_or(std::string());
    updateQuery.account = found.front().account.value_or(std::string());
    status = store->update(updateQuery,
                           detail::itemFromDictionary(dictionaryToSecItemFormat(keychainData_)));
    if (status != errSecSuccess)
      logException("writeToKeychain", "Error updating keychain item: ", status);
  }
  keychainData_[std::string(kSecAttrAccessible)] =
      std::string(kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly);
  return status;
}

}  // namespace vorn

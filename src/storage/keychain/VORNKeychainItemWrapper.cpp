#include "vorn/storage/keychain/VORNKeychainItemWrapper.hpp"

#include <utf8proc.h>

#include "storage/keychain/KeychainDictionaries.hpp"
#include "vorn/storage/keychain/KeychainItems.hpp"

namespace vorn {
namespace {

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

bool readFailed(OSStatus status) {
  return status != errSecSuccess && status != errSecItemNotFound;
}

}  // namespace

std::shared_ptr<VORNKeychainItemWrapper> VORNKeychainItemWrapper::itemWithIdentifier(
    std::string_view identifier, std::optional<std::string_view> account) {
  return KeychainItems::shared()->item(identifier, account);
}

std::string VORNKeychainItemWrapper::itemDictKeyForIdentifier(
    std::string_view identifier, std::optional<std::string_view> account) {
  return std::string(identifier) + "_" + std::string(account.value_or("(null)"));
}

void VORNKeychainItemWrapper::resetInMemoryKeychainItems() {
  KeychainItems::shared()->reset();
}

VORNKeychainItemWrapper::VORNKeychainItemWrapper(std::string_view identifier,
                                                 std::optional<std::string_view> account)
    : VORNKeychainItemWrapper(KeychainItems::shared()->store(), identifier, account) {}

VORNKeychainItemWrapper::VORNKeychainItemWrapper(std::shared_ptr<KeychainStore> store,
                                                 std::string_view identifier,
                                                 std::optional<std::string_view> account)
    : store_(std::move(store)) {
  keychainQuery_.service = std::string(identifier);
  if (account)
    keychainQuery_.account = std::string(*account);
  keychainQuery_.matchLimit = MatchLimit::one;
  keychainQuery_.returnAttributes = true;
  keychainQuery_.returnData = true;
  keychainData_ = placeholder();
  adopt(readFromStore(), 0);
}

ReadResult<KeychainDictionary> VORNKeychainItemWrapper::readFromStore() const {
  std::vector<KeychainItem> found;
  const OSStatus status = store_->copyMatching(keychainQuery_, found);
  if (status == errSecSuccess && !found.empty())
    return ReadResult<KeychainDictionary>::found(detail::dictionaryFromItem(found.front()));
  if (!readFailed(status))
    return ReadResult<KeychainDictionary>::absent();
  logKeychainItemExceptionWithCode(
      1, "dictionaryItemFromKeychain: Error attempting to look up keychain item: " +
             keychainErrorCodeString(status));
  return ReadResult<KeychainDictionary>::error(status);
}

KeychainDictionary VORNKeychainItemWrapper::placeholder() const {
  KeychainDictionary name;
  name[std::string(kSecAttrService)] = *keychainQuery_.service;
  if (keychainQuery_.account)
    name[std::string(kSecAttrAccount)] = *keychainQuery_.account;
  return name;
}

void VORNKeychainItemWrapper::adopt(ReadResult<KeychainDictionary> read,
                                    std::uint64_t changes) const {
  std::lock_guard lock(mutex_);
  // A change written since the read began is newer than what the read saw.
  if (changes != changes_)
    return;
  lastReadStatus_ = read.status();
  if (read.isFound())
    keychainData_ = std::move(read).value();
  else if (read.isAbsent())
    keychainData_ = placeholder();
}

OSStatus VORNKeychainItemWrapper::reload() const {
  std::uint64_t changes = 0;
  {
    std::lock_guard lock(mutex_);
    changes = changes_;
  }
  // The store is read without the object's lock: outside a section another thread's section
  // may hold the store, and it may want this object.
  auto read = readFromStore();
  const OSStatus status = read.status();
  adopt(std::move(read), changes);
  return status;
}

void VORNKeychainItemWrapper::reloadIfUnread() const {
  {
    std::lock_guard lock(mutex_);
    if (!readFailed(lastReadStatus_))
      return;
  }
  reload();
}

OSStatus VORNKeychainItemWrapper::readStatus() const {
  std::lock_guard lock(mutex_);
  return lastReadStatus_;
}

KeychainDictionary VORNKeychainItemWrapper::keychainData() const {
  reloadIfUnread();
  std::lock_guard lock(mutex_);
  return keychainData_;
}

KeychainDictionary VORNKeychainItemWrapper::dictionaryItemFromKeychain() const {
  auto read = readFromStore();
  return read.isFound() ? std::move(read).value() : placeholder();
}

std::optional<KeychainValue> VORNKeychainItemWrapper::objectForKey(std::string_view key) const {
  reloadIfUnread();
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

std::optional<KeychainData> VORNKeychainItemWrapper::valueData() const {
  auto value = objectForKey(kSecValueData);
  if (!value)
    return std::nullopt;
  if (auto* text = std::get_if<std::string>(&*value))
    return KeychainData(text->begin(), text->end());
  return std::get<KeychainData>(std::move(*value));
}

ReadResult<KeychainData> VORNKeychainItemWrapper::readValueData() const {
  auto value = valueData();
  std::lock_guard lock(mutex_);
  if (readFailed(lastReadStatus_))
    return ReadResult<KeychainData>::error(lastReadStatus_);
  return value ? ReadResult<KeychainData>::found(std::move(*value))
               : ReadResult<KeychainData>::absent();
}

std::optional<std::string> VORNKeychainItemWrapper::valueString() const {
  return stringForKey(kSecValueData);
}

}  // namespace vorn

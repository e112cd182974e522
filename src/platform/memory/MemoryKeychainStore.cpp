#include "platform/memory/MemoryKeychainStore.hpp"

#include <algorithm>

#include "platform/KeychainRecord.hpp"

namespace vorn {

std::shared_ptr<KeychainStore> KeychainStore::inMemory() {
  return std::make_shared<platform::MemoryKeychainStore>();
}

namespace platform {

bool MemoryKeychainStore::matches(const Record& record, const KeychainQuery& query) {
  return (!query.service || record.service == *query.service) &&
         (!query.account || record.account == *query.account);
}

KeychainItem MemoryKeychainStore::resultFor(const Record& record, const KeychainQuery& query) {
  KeychainItem item;
  if (query.returnAttributes) {
    item.service = record.service;
    item.account = returnedAccount(record.account);
    item.accessible = record.accessible;
    item.attributes = record.attributes;
  }
  if (query.returnData)
    item.data = record.data.value_or(KeychainData());
  return item;
}

bool MemoryKeychainStore::exists(const std::string& service, const std::string& account) const {
  return std::any_of(items_.begin(), items_.end(),
                     [&](const Record& r) { return r.service == service && r.account == account; });
}

OSStatus MemoryKeychainStore::copyMatching(const KeychainQuery& query,
                                           std::vector<KeychainItem>& result) {
  result.clear();
  std::lock_guard lock(mutex_);
  for (const Record& record : items_) {
    if (!matches(record, query))
      continue;
    result.push_back(resultFor(record, query));
    if (query.matchLimit == MatchLimit::one)
      break;
  }
  return result.empty() ? errSecItemNotFound : errSecSuccess;
}

OSStatus MemoryKeychainStore::add(const KeychainItem& item) {
  Record record{item.service.value_or(std::string()), storedAccount(item.account),
                storedAccessible(item.accessible), item.data, item.attributes};
  std::lock_guard lock(mutex_);
  if (exists(record.service, record.account))
    return errSecDuplicateItem;
  items_.push_back(std::move(record));
  return errSecSuccess;
}

OSStatus MemoryKeychainStore::update(const KeychainQuery& query, const KeychainItem& changes) {
  std::lock_guard lock(mutex_);
  std::vector<Record> updated = items_;
  bool found = false;
  for (Record& record : updated) {
    if (!matches(record, query))
      continue;
    found = true;
    if (changes.service)
      record.service = *changes.service;
    if (changes.account)
      record.account = *changes.account;
    if (changes.accessible)
      record.accessible = *changes.accessible;
    if (changes.data)
      record.data = changes.data;
    for (const auto& [name, value] : changes.attributes)
      record.attributes[name] = value;
  }
  if (!found)
    return errSecItemNotFound;
  for (std::size_t i = 0; i < updated.size(); ++i) {
    for (std::size_t j = i + 1; j < updated.size(); ++j) {
      if (updated[i].service == updated[j].service && updated[i].account == updated[j].account)
        return errSecDuplicateItem;
    }
  }
  items_ = std::move(updated);
  return errSecSuccess;
}

OSStatus MemoryKeychainStore::remove(const KeychainQuery& query) {
  std::lock_guard lock(mutex_);
  const auto removed = std::erase_if(items_, [&](const Record& r) { return matches(r, query); });
  return removed == 0 ? errSecItemNotFound : errSecSuccess;
}

OSStatus MemoryKeychainStore::storeKey(const KeychainKey& key) {
  std::lock_guard lock(mutex_);
  const bool duplicate = std::any_of(keys_.begin(), keys_.end(), [&](const KeychainKey& k) {
    return k.applicationTag == key.applicationTag && k.keyClass == key.keyClass;
  });
  if (duplicate)
    return errSecDuplicateItem;
  keys_.push_back(key);
  keys_.back().accessible = storedAccessible(key.accessible);
  return errSecSuccess;
}

OSStatus MemoryKeychainStore::loadKey(std::string_view applicationTag,
                                      std::optional<KeychainKeyClass> keyClass, KeychainKey& key) {
  std::lock_guard lock(mutex_);
  for (const KeychainKey& stored : keys_) {
    if (stored.applicationTag == applicationTag && (!keyClass || stored.keyClass == *keyClass)) {
      key = stored;
      return errSecSuccess;
    }
  }
  return errSecItemNotFound;
}

OSStatus MemoryKeychainStore::deleteKey(std::string_view applicationTag) {
  std::lock_guard lock(mutex_);
  const auto removed = std::erase_if(
      keys_, [&](const KeychainKey& k) { return k.applicationTag == applicationTag; });
  return removed == 0 ? errSecItemNotFound : errSecSuccess;
}

}  // namespace platform
}  // namespace vorn

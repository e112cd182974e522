// The in-memory key store: items and keys in vectors under one mutex, kept in the order
// they were added. Used as the ephemeral backend and under the fault-injecting test store.
#pragma once

#include <mutex>
#include <vector>

#include "vorn/platform/KeychainStore.hpp"

namespace vorn::platform {

class MemoryKeychainStore final : public KeychainStore {
 public:
  OSStatus copyMatching(const KeychainQuery& query, std::vector<KeychainItem>& result) override;
  OSStatus add(const KeychainItem& item) override;
  OSStatus update(const KeychainQuery& query, const KeychainItem& changes) override;
  OSStatus remove(const KeychainQuery& query) override;

  OSStatus storeKey(const KeychainKey& key) override;
  OSStatus loadKey(std::string_view applicationTag, std::optional<KeychainKeyClass> keyClass,
                   KeychainKey& key) override;
  OSStatus deleteKey(std::string_view applicationTag) override;

 private:
  // A stored item: service and account always present (absent account stored empty).
  struct Record {
    std::string service;
    std::string account;
    std::string accessible;
    std::optional<KeychainData> data;
    KeychainDictionary attributes;
  };

  static bool matches(const Record& record, const KeychainQuery& query);
  static KeychainItem resultFor(const Record& record, const KeychainQuery& query);
  bool exists(const std::string& service, const std::string& account) const;

  std::mutex mutex_;
  std::vector<Record> items_;      // guarded by mutex_
  std::vector<KeychainKey> keys_;  // guarded by mutex_
};

}  // namespace vorn::platform

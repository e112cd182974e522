// Shared by the secure-prefs test files: a fixed key and a defaults store whose entries a
// test can list and whose writes it can make fail.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <numeric>
#include <string>

#include "vorn/platform/DefaultsStore.hpp"
#include "vorn/storage/prefs/EncryptionManager.hpp"

namespace vorn::test {

inline std::shared_ptr<EncryptionManager> managerWithKeyByte(std::uint8_t first) {
  Bytes key(32);
  Bytes iv(16);
  std::iota(key.begin(), key.end(), first);
  std::iota(iv.begin(), iv.end(), first);
  return std::make_shared<EncryptionManager>(std::make_shared<VORNEncryptionKey>(key, iv));
}

class TableDefaults : public DefaultsStore {
 public:
  using Entries = std::map<std::string, DefaultsValue, std::less<>>;

  std::optional<DefaultsValue> object(std::string_view suite, std::string_view key) override {
    std::lock_guard lock(mutex_);
    const auto s = suites_.find(suite);
    if (s == suites_.end()) {
      return std::nullopt;
    }
    const auto e = s->second.find(key);
    return e == s->second.end() ? std::nullopt : std::optional<DefaultsValue>(e->second);
  }
  bool set(std::string_view suite, std::string_view key, const DefaultsValue& value) override {
    std::lock_guard lock(mutex_);
    if (failWrites_) {
      return false;
    }
    suites_[std::string(suite)][std::string(key)] = value;
    return true;
  }
  bool remove(std::string_view suite, std::string_view key) override {
    std::lock_guard lock(mutex_);
    const auto s = suites_.find(suite);
    if (s != suites_.end()) {
      s->second.erase(std::string(key));
    }
    return true;
  }
  bool removePersistentDomain(std::string_view suite) override {
    std::lock_guard lock(mutex_);
    suites_.erase(std::string(suite));
    return true;
  }

  Entries entries(std::string_view suite) {
    std::lock_guard lock(mutex_);
    const auto s = suites_.find(suite);
    return s == suites_.end() ? Entries{} : s->second;
  }
  void failWrites(bool fail) {
    std::lock_guard lock(mutex_);
    failWrites_ = fail;
  }

 private:
  std::mutex mutex_;
  std::map<std::string, Entries, std::less<>> suites_;  // guarded by mutex_
  bool failWrites_ = false;                             // guarded by mutex_
};

}  // namespace vorn::test

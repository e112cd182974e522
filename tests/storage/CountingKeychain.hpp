// A key store that forwards to an in-memory one and counts the calls that change it, so that
// tests can tell whether an operation wrote to the keychain.
#pragma once

#include <atomic>
#include <memory>

#include "vorn/platform/Platform.hpp"

namespace vorn::cryptotest {

class CountingKeychain : public KeychainStore {
 public:
  OSStatus copyMatching(const KeychainQuery& query, std::vector<KeychainItem>& result) override {
    return inner_->copyMatching(query, result);
  }
  OSStatus add(const KeychainItem& item) override {
    ++writes;
    return failWrites != errSecSuccess ? failWrites.load() : inner_->add(item);
  }
  OSStatus update(const KeychainQuery& query, const KeychainItem& changes) override {
    ++writes;
    return failWrites != errSecSuccess ? failWrites.load() : inner_->update(query, changes);
  }
  OSStatus remove(const KeychainQuery& query) override {
    ++writes;
    return inner_->remove(query);
  }
  OSStatus storeKey(const KeychainKey& key) override {
    ++writes;
    return inner_->storeKey(key);
  }
  OSStatus loadKey(std::string_view tag, std::optional<KeychainKeyClass> keyClass,
                   KeychainKey& key) override {
    return inner_->loadKey(tag, keyClass, key);
  }
  OSStatus deleteKey(std::string_view tag) override {
    ++writes;
    return inner_->deleteKey(tag);
  }

  std::atomic<int> writes{0};
  /// When not errSecSuccess, every item add and update answers this status.
  std::atomic<OSStatus> failWrites{errSecSuccess};

 private:
  std::shared_ptr<KeychainStore> inner_ = KeychainStore::inMemory();
};

/// Installs an ephemeral Platform whose keychain counts writes; returns that keychain.
inline std::shared_ptr<CountingKeychain> installCountingPlatform() {
  auto keychain = std::make_shared<CountingKeychain>();
  Platform platform = Platform::ephemeral();
  platform.keychain = keychain;
  Platform::install(platform);
  return keychain;
}

}  // namespace vorn::cryptotest

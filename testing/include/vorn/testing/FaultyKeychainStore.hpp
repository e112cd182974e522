// A key store that forwards to another one (in memory by default) but can be told to answer
// any call with any status, and counts every call, so each failure path above the key store
// can be driven from a test.
//
// A fault applies to one operation, optionally only to queries or items of one service, and
// either to every call or to the next N calls; a faulted call does not reach the inner store.
// The most specific matching fault wins: service-bound before general, counted before
// permanent. Thread-safe.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "vorn/platform/KeychainStore.hpp"

namespace vorn::testing {

enum class KeychainOperation : int {
  copyMatching = 0,
  add = 1,
  update = 2,
  remove = 3,
  storeKey = 4,
  loadKey = 5,
  deleteKey = 6,
  /// exclusively(): a faulted section does not run its body.
  exclusively = 7,
};

class FaultyKeychainStore : public KeychainStore {
 public:
  explicit FaultyKeychainStore(std::shared_ptr<KeychainStore> inner = KeychainStore::inMemory());

  /// Every later call of `operation` (on `service`, when given) answers `status`.
  void failAlways(KeychainOperation operation, OSStatus status,
                  std::optional<std::string> service = std::nullopt);
  /// The next `times` calls of `operation` (on `service`, when given) answer `status`.
  void failNext(KeychainOperation operation, OSStatus status, int times = 1,
                std::optional<std::string> service = std::nullopt);
  void clearFaults();

  /// Calls of `operation` so far, faulted or not.
  int calls(KeychainOperation operation) const;
  int totalCalls() const;
  /// The arguments of the last update() call.
  std::optional<std::pair<KeychainQuery, KeychainItem>> lastUpdate() const;
  /// The item of the last add() call.
  std::optional<KeychainItem> lastAdd() const;

  const std::shared_ptr<KeychainStore>& inner() const noexcept { return inner_; }

  OSStatus copyMatching(const KeychainQuery& query, std::vector<KeychainItem>& result) override;
  OSStatus add(const KeychainItem& item) override;
  OSStatus update(const KeychainQuery& query, const KeychainItem& changes) override;
  OSStatus remove(const KeychainQuery& query) override;
  OSStatus storeKey(const KeychainKey& key) override;
  OSStatus loadKey(std::string_view applicationTag, std::optional<KeychainKeyClass> keyClass,
                   KeychainKey& key) override;
  OSStatus deleteKey(std::string_view applicationTag) override;
  /// The inner store's section, so that sections lock what the inner store locks.
  OSStatus exclusively(const std::function<void()>& body) override;

 private:
  struct Fault {
    KeychainOperation operation;
    OSStatus status;
    std::optional<std::string> service;
    int remaining;  // -1: every call
  };

  // Counts the call and answers the fault's status when one applies.
  std::optional<OSStatus> enter(KeychainOperation operation,
                                const std::optional<std::string>& service);

  const std::shared_ptr<KeychainStore> inner_;
  mutable std::mutex mutex_;
  std::vector<Fault> faults_;                                         // guarded by mutex_
  std::map<KeychainOperation, int> calls_;                            // guarded by mutex_
  std::optional<std::pair<KeychainQuery, KeychainItem>> lastUpdate_;  // guarded by mutex_
  std::optional<KeychainItem> lastAdd_;                               // guarded by mutex_
};

}  // namespace vorn::testing

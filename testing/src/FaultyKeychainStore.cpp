#include "vorn/testing/FaultyKeychainStore.hpp"

#include <algorithm>
#include <numeric>

namespace vorn::testing {
namespace {

int rank(bool serviceBound, bool counted) {
  return (serviceBound ? 2 : 0) + (counted ? 1 : 0);
}

}  // namespace

FaultyKeychainStore::FaultyKeychainStore(std::shared_ptr<KeychainStore> inner)
    : inner_(std::move(inner)) {}

void FaultyKeychainStore::failAlways(KeychainOperation operation, OSStatus status,
                                     std::optional<std::string> service) {
  std::lock_guard lock(mutex_);
  faults_.push_back(Fault{operation, status, std::move(service), -1});
}

void FaultyKeychainStore::failNext(KeychainOperation operation, OSStatus status, int times,
                                   std::optional<std::string> service) {
  std::lock_guard lock(mutex_);
  faults_.push_back(Fault{operation, status, std::move(service), times});
}

void FaultyKeychainStore::clearFaults() {
  std::lock_guard lock(mutex_);
  faults_.clear();
}

int FaultyKeychainStore::calls(KeychainOperation operation) const {
  std::lock_guard lock(mutex_);
  const auto found = calls_.find(operation);
  return found == calls_.end() ? 0 : found->second;
}

int FaultyKeychainStore::totalCalls() const {
  std::lock_guard lock(mutex_);
  return std::accumulate(calls_.begin(), calls_.end(), 0,
                         [](int sum, const auto& entry) { return sum + entry.second; });
}

std::optional<std::pair<KeychainQuery, KeychainItem>> FaultyKeychainStore::lastUpdate() const {
  std::lock_guard lock(mutex_);
  return lastUpdate_;
}

std::optional<KeychainItem> FaultyKeychainStore::lastAdd() const {
  std::lock_guard lock(mutex_);
  return lastAdd_;
}

std::optional<OSStatus> FaultyKeychainStore::enter(KeychainOperation operation,
                                                   const std::optional<std::string>& service) {
  std::lock_guard lock(mutex_);
  ++calls_[operation];
  Fault* chosen = nullptr;
  for (Fault& fault : faults_) {
    if (fault.operation != operation || fault.remaining == 0)
      continue;
    if (fault.service && fault.service != service)
      continue;
    if (chosen == nullptr || rank(fault.service.has_value(), fault.remaining > 0) >
                                 rank(chosen->service.has_value(), chosen->remaining > 0))
      chosen = &fault;
  }
  if (chosen == nullptr)
    return std::nullopt;
  if (chosen->remaining > 0)
    --chosen->remaining;
  return chosen->status;
}

OSStatus FaultyKeychainStore::copyMatching(const KeychainQuery& query,
                                           std::vector<KeychainItem>& result) {
  if (const auto status = enter(KeychainOperation::copyMatching, query.service)) {
    result.clear();
    return *status;
  }
  return inner_->copyMatching(query, result);
}

OSStatus FaultyKeychainStore::add(const KeychainItem& item) {
  {
    std::lock_guard lock(mutex_);
    lastAdd_ = item;
  }
  if (const auto status = enter(KeychainOperation::add, item.service))
    return *status;
  return inner_->add(item);
}

OSStatus FaultyKeychainStore::update(const KeychainQuery& query, const KeychainItem& changes) {
  {
    std::lock_guard lock(mutex_);
    lastUpdate_.emplace(query, changes);
  }
  if (const auto status = enter(KeychainOperation::update, query.service))
    return *status;
  return inner_->update(query, changes);
}

OSStatus FaultyKeychainStore::remove(const KeychainQuery& query) {
  if (const auto status = enter(KeychainOperation::remove, query.service))
    return *status;
  return inner_->remove(query);
}

OSStatus FaultyKeychainStore::storeKey(const KeychainKey& key) {
  if (const auto status = enter(KeychainOperation::storeKey, key.applicationTag))
    return *status;
  return inner_->storeKey(key);
}

OSStatus FaultyKeychainStore::loadKey(std::string_view applicationTag,
                                      std::optional<KeychainKeyClass> keyClass, KeychainKey& key) {
  if (const auto status = enter(KeychainOperation::loadKey, std::string(applicationTag)))
    return *status;
  return inner_->loadKey(applicationTag, keyClass, key);
}

OSStatus FaultyKeychainStore::deleteKey(std::string_view applicationTag) {
  if (const auto status = enter(KeychainOperation::deleteKey, std::string(applicationTag)))
    return *status;
  return inner_->deleteKey(applicationTag);
}

OSStatus FaultyKeychainStore::exclusively(const std::function<void()>& body) {
  if (const auto status = enter(KeychainOperation::exclusively, std::nullopt))
    return *status;
  return inner_->exclusively(body);
}

}  // namespace vorn::testing

#include "vorn/testing/FaultyDefaultsStore.hpp"

namespace vorn::testing {

FaultyDefaultsStore::FaultyDefaultsStore(std::shared_ptr<DefaultsStore> inner)
    : inner_(std::move(inner)) {}

void FaultyDefaultsStore::failNextReads(int times, std::optional<std::string> key, int skip) {
  std::lock_guard lock(mutex_);
  failingReads_ = times;
  failingReadKey_ = std::move(key);
  readsToSkip_ = skip;
}

bool FaultyDefaultsStore::readFails(std::string_view key) {
  ++reads_;
  if (failReads_)
    return true;
  std::lock_guard lock(mutex_);
  if (failingReads_ == 0 || (failingReadKey_ && *failingReadKey_ != key))
    return false;
  if (readsToSkip_ > 0) {
    --readsToSkip_;
    return false;
  }
  --failingReads_;
  return true;
}

std::optional<DefaultsValue> FaultyDefaultsStore::object(std::string_view suite,
                                                         std::string_view key) {
  return read(suite, key).valueIfFound();
}

ReadResult<DefaultsValue> FaultyDefaultsStore::read(std::string_view suite, std::string_view key) {
  if (readFails(key))
    return ReadResult<DefaultsValue>::error(kReadFailure);
  return inner_->read(suite, key);
}

bool FaultyDefaultsStore::set(std::string_view suite, std::string_view key,
                              const DefaultsValue& value) {
  return !failWrites_ && inner_->set(suite, key, value);
}

bool FaultyDefaultsStore::remove(std::string_view suite, std::string_view key) {
  return ignoreRemovals_ || inner_->remove(suite, key);
}

bool FaultyDefaultsStore::removePersistentDomain(std::string_view suite) {
  return ignoreRemovals_ || inner_->removePersistentDomain(suite);
}

}  // namespace vorn::testing

#include "vorn/testing/FaultyDefaultsStore.hpp"

namespace vorn::testing {

FaultyDefaultsStore::FaultyDefaultsStore(std::shared_ptr<DefaultsStore> inner)
    : inner_(std::move(inner)) {}

std::optional<DefaultsValue> FaultyDefaultsStore::object(std::string_view suite,
                                                         std::string_view key) {
  return inner_->object(suite, key);
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

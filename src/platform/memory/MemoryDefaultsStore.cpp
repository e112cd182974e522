#include "platform/memory/MemoryDefaultsStore.hpp"

namespace vorn {

std::shared_ptr<DefaultsStore> DefaultsStore::inMemory() {
  return std::make_shared<platform::MemoryDefaultsStore>();
}

namespace platform {

std::optional<DefaultsValue> MemoryDefaultsStore::object(std::string_view suite,
                                                         std::string_view key) {
  std::lock_guard lock(mutex_);
  const auto domain = suites_.find(suite);
  if (domain == suites_.end())
    return std::nullopt;
  const auto entry = domain->second.find(key);
  if (entry == domain->second.end())
    return std::nullopt;
  return entry->second;
}

bool MemoryDefaultsStore::set(std::string_view suite, std::string_view key,
                              const DefaultsValue& value) {
  std::lock_guard lock(mutex_);
  auto domain = suites_.find(suite);
  if (domain == suites_.end())
    domain = suites_.emplace(std::string(suite), Domain()).first;
  domain->second.insert_or_assign(std::string(key), value);
  return true;
}

bool MemoryDefaultsStore::remove(std::string_view suite, std::string_view key) {
  std::lock_guard lock(mutex_);
  const auto domain = suites_.find(suite);
  if (domain != suites_.end()) {
    const auto entry = domain->second.find(key);
    if (entry != domain->second.end())
      domain->second.erase(entry);
  }
  return true;
}

bool MemoryDefaultsStore::removePersistentDomain(std::string_view suite) {
  std::lock_guard lock(mutex_);
  const auto domain = suites_.find(suite);
  if (domain != suites_.end())
    suites_.erase(domain);
  return true;
}

}  // namespace platform
}  // namespace vorn

// The in-memory defaults store: one ordered map per suite under one mutex.
#pragma once

#include <map>
#include <mutex>
#include <string>

#include "vorn/platform/DefaultsStore.hpp"

namespace vorn::platform {

class MemoryDefaultsStore final : public DefaultsStore {
 public:
  std::optional<DefaultsValue> object(std::string_view suite, std::string_view key) override;
  bool set(std::string_view suite, std::string_view key, const DefaultsValue& value) override;
  bool remove(std::string_view suite, std::string_view key) override;
  bool removePersistentDomain(std::string_view suite) override;

 private:
  using Domain = std::map<std::string, DefaultsValue, std::less<>>;

  std::mutex mutex_;
  std::map<std::string, Domain, std::less<>> suites_;  // guarded by mutex_
};

}  // namespace vorn::platform

// A defaults store that forwards to another one (in memory by default) but can be told to
// refuse writes or to ignore removals, for the paths where a user-defaults write does not
// take. Thread-safe.
#pragma once

#include <atomic>
#include <memory>

#include "vorn/platform/DefaultsStore.hpp"

namespace vorn::testing {

class FaultyDefaultsStore : public DefaultsStore {
 public:
  explicit FaultyDefaultsStore(std::shared_ptr<DefaultsStore> inner = DefaultsStore::inMemory());

  /// set() answers false and stores nothing.
  void setFailWrites(bool fail) noexcept { failWrites_ = fail; }
  /// remove() and removePersistentDomain() answer true but remove nothing.
  void setIgnoreRemovals(bool ignore) noexcept { ignoreRemovals_ = ignore; }

  const std::shared_ptr<DefaultsStore>& inner() const noexcept { return inner_; }

  std::optional<DefaultsValue> object(std::string_view suite, std::string_view key) override;
  bool set(std::string_view suite, std::string_view key, const DefaultsValue& value) override;
  bool remove(std::string_view suite, std::string_view key) override;
  bool removePersistentDomain(std::string_view suite) override;

 private:
  const std::shared_ptr<DefaultsStore> inner_;
  std::atomic<bool> failWrites_{false};
  std::atomic<bool> ignoreRemovals_{false};
};

}  // namespace vorn::testing

// A defaults store that forwards to another one (in memory by default) but can be told to
// refuse writes, to ignore removals, or to fail reads, for the paths where a user-defaults
// write does not take or a read cannot be answered. Thread-safe.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "vorn/platform/DefaultsStore.hpp"

namespace vorn::testing {

class FaultyDefaultsStore : public DefaultsStore {
 public:
  explicit FaultyDefaultsStore(std::shared_ptr<DefaultsStore> inner = DefaultsStore::inMemory());

  /// set() answers false and stores nothing.
  void setFailWrites(bool fail) noexcept { failWrites_ = fail; }
  /// remove() and removePersistentDomain() answer true but remove nothing.
  void setIgnoreRemovals(bool ignore) noexcept { ignoreRemovals_ = ignore; }
  /// Every read fails, as with an unreadable file: read() answers an error with status
  /// kReadFailure, object() and the typed readers answer nothing.
  void setFailReads(bool fail) noexcept { failReads_ = fail; }
  /// The next `times` reads (of `key` only, when given) fail the same way, after `skip` such
  /// reads went through.
  void failNextReads(int times, std::optional<std::string> key = std::nullopt, int skip = 0);
  /// Reads so far, failed or not.
  int reads() const noexcept { return reads_; }

  /// The status of a failed read: SQLite's "disk I/O error".
  static constexpr std::int32_t kReadFailure = 10;

  const std::shared_ptr<DefaultsStore>& inner() const noexcept { return inner_; }

  std::optional<DefaultsValue> object(std::string_view suite, std::string_view key) override;
  ReadResult<DefaultsValue> read(std::string_view suite, std::string_view key) override;
  bool set(std::string_view suite, std::string_view key, const DefaultsValue& value) override;
  bool remove(std::string_view suite, std::string_view key) override;
  bool removePersistentDomain(std::string_view suite) override;

 private:
  // Counts the read and tells whether it fails.
  bool readFails(std::string_view key);

  const std::shared_ptr<DefaultsStore> inner_;
  std::atomic<bool> failWrites_{false};
  std::atomic<bool> ignoreRemovals_{false};
  std::atomic<bool> failReads_{false};
  std::atomic<int> reads_{0};
  std::mutex mutex_;
  int failingReads_ = 0;                       // guarded by mutex_
  int readsToSkip_ = 0;                        // guarded by mutex_
  std::optional<std::string> failingReadKey_;  // guarded by mutex_
};

}  // namespace vorn::testing

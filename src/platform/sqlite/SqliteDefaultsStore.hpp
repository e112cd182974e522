// The file-backed defaults store: defaults.db, one connection guarded by a mutex.
//
// One table of (suite, key) → typed value. Every setter is its own transaction, committed
// to the WAL before it returns.
//
// A failing call logs an error line once the mutex is released and answers false or no
// value. A file that cannot be opened at all (locked by another program, damaged, not a
// database) is reported once, kept as it is and tried again on every call
// (SqliteDatabase.hpp).
#pragma once

#include <memory>
#include <mutex>

#include "platform/sqlite/SqliteDatabase.hpp"
#include "vorn/platform/DefaultsStore.hpp"

namespace vorn::platform {

class SqliteDefaultsStore final : public DefaultsStore {
 public:
  explicit SqliteDefaultsStore(std::unique_ptr<SqliteDatabase> db) : db_(std::move(db)) {}

  std::optional<DefaultsValue> object(std::string_view suite, std::string_view key) override;
  ReadResult<DefaultsValue> read(std::string_view suite, std::string_view key) override;
  std::vector<ReadResult<DefaultsValue>> readSnapshot(std::string_view suite,
                                                      std::span<const std::string> keys) override;
  bool set(std::string_view suite, std::string_view key, const DefaultsValue& value) override;
  bool remove(std::string_view suite, std::string_view key) override;
  bool removePersistentDomain(std::string_view suite) override;

 private:
  bool failure();
  ReadResult<DefaultsValue> readLocked(std::string_view suite, std::string_view key);
  ReadResult<DefaultsValue> unreadableValue(std::string_view suite, std::string_view key, int type);

  std::mutex mutex_;
  std::unique_ptr<SqliteDatabase> db_;  // guarded by mutex_
};

}  // namespace vorn::platform

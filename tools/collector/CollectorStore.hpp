// CollectorStore: what the collector received, in one SQLite file, so a second demo run (a
// second collector process) sees the first run's traffic too.
//
// Every request is one row of `requests` (path, method, status answered, body); every event of
// an accepted batch is one row of `events`, duplicates included, because the collector's job is
// to show what the SDK sent, not to hide a double upload. Inbox messages live in `inbox`.
//
// Thread safety: every call may come from any server thread; one mutex serialises them.
#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace vorn::collector {

class CollectorStore {
 public:
  /// Opens (creating when missing) the database; false from isOpen() when it cannot.
  explicit CollectorStore(const std::filesystem::path& file);
  ~CollectorStore();

  CollectorStore(const CollectorStore&) = delete;
  CollectorStore& operator=(const CollectorStore&) = delete;

  bool isOpen() const { return db_ != nullptr; }

  void recordRequest(std::string_view method, std::string_view path, int status,
                     std::string_view body);
  void recordEvent(std::string_view id, std::string_view name, std::string_view body);
  void recordRegistration(std::string_view body);
  /// The inbox as a JSON array of {"id", "subject", "read"}; seeded with three messages.
  nlohmann::json inbox();
  /// Marks a message read (`deleted` false) or deletes it; false when there is no such id.
  bool updateMessage(std::string_view id, bool deleted);
  /// Counts per path and status, events by name, duplicate event ids, the last registration.
  nlohmann::json summary();

 private:
  bool exec(const char* sql);
  // Runs `sql` with text parameters bound in order; calls `row` for each result row.
  template <class Row>
  bool query(const char* sql, std::initializer_list<std::string_view> params, Row row);

  std::mutex mutex_;
  sqlite3* db_ = nullptr;  // guarded by mutex_
};

}  // namespace vorn::collector

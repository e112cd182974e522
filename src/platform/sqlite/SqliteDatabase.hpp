// One SQLite connection in WAL mode with synchronous NORMAL (a committed write survives a
// crash of the app process), its prepared statements cached by SQL text.
//
// Not thread-safe: the store that owns it serialises every use with its own mutex.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorn::platform {

class SqliteDatabase {
 public:
  /// Opens or creates `directory`/`fileName` with the directory at 0700 and the database,
  /// -wal and -shm files at 0600, then runs `schema`. Null (after a log line) on failure.
  static std::unique_ptr<SqliteDatabase> open(const std::filesystem::path& directory,
                                              std::string_view fileName, const char* schema);
  ~SqliteDatabase();

  SqliteDatabase(const SqliteDatabase&) = delete;
  SqliteDatabase& operator=(const SqliteDatabase&) = delete;

  /// A cached statement for `sql`, reset and unbound; null when it cannot be prepared.
  sqlite3_stmt* statement(const char* sql);
  /// Runs SQL without results (BEGIN, COMMIT, ...); false on failure.
  bool execute(const char* sql);
  /// The connection's last error text.
  std::string lastError() const;

 private:
  explicit SqliteDatabase(sqlite3* db) : db_(db) {}

  sqlite3* db_;
  std::map<const char*, sqlite3_stmt*> statements_;
};

/// Resets a cached statement when the scope ends, so it never holds a read snapshot.
class StatementScope {
 public:
  explicit StatementScope(sqlite3_stmt* statement) : statement_(statement) {}
  ~StatementScope();
  StatementScope(const StatementScope&) = delete;
  StatementScope& operator=(const StatementScope&) = delete;

 private:
  sqlite3_stmt* statement_;
};

// Binding helpers: text and blobs are copied by SQLite (SQLITE_TRANSIENT).
void bindText(sqlite3_stmt* statement, int index, std::string_view text);
void bindOptionalText(sqlite3_stmt* statement, int index, const std::optional<std::string>& text);
void bindBlob(sqlite3_stmt* statement, int index, const std::vector<std::uint8_t>& bytes);
std::string columnText(sqlite3_stmt* statement, int column);
std::vector<std::uint8_t> columnBlob(sqlite3_stmt* statement, int column);

}  // namespace vorn::platform

// One SQLite connection in WAL mode with synchronous NORMAL (a committed write survives a
// crash of the app process), its prepared statements cached by SQL text.
//
// A file SQLite cannot use when the store opens it (locked by another program, damaged, not
// a database at all) is neither replaced nor removed: the database reports the failure once,
// answers every statement and execution as failed with that failure as its last error, and
// connects again on each use, so a lock that goes away or a file put back heals the store.
// Once connected, it stays connected. Before the first connection it checks the
// write-ahead log and logs the changes that SQLite's recovery will drop (WalCheck.hpp).
//
// A database opened with openReadOnly() connects for reading only (ReadOnlyOpen.hpp): it
// creates, changes and checkpoints nothing, runs no schema, and every write fails with
// SQLITE_READONLY, which the owning store reports like any other failure.
//
// Failures are kept in log() rather than logged at once, because the owner calls in here
// with its lock held (see DeferredLog.hpp).
//
// Not thread-safe: the store that owns it serialises every use with its own mutex.
#pragma once

#include <sqlite3.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sqlite/DeferredLog.hpp"

namespace vorn::platform {

class SqliteDatabase {
 public:
  /// Creates `directory` (0700) and `directory`/`fileName` (0600) when missing, then tries to
  /// connect and run `schema`; the -wal and -shm files get 0600 too. Null (after a fault
  /// line) only when the directory or the file cannot be created; a connection that fails
  /// gives a database that connects later (see above), with the failure already logged.
  static std::unique_ptr<SqliteDatabase> open(const std::filesystem::path& directory,
                                              std::string_view fileName, const char* schema);
  /// Connects to the existing `directory`/`fileName` for reading only; null (with nothing
  /// logged) when the file does not exist. Nothing in the directory is created or changed.
  static std::unique_ptr<SqliteDatabase> openReadOnly(const std::filesystem::path& directory,
                                                      std::string_view fileName);
  ~SqliteDatabase();

  SqliteDatabase(const SqliteDatabase&) = delete;
  SqliteDatabase& operator=(const SqliteDatabase&) = delete;

  /// Whether this database was opened with openReadOnly().
  bool readOnly() const { return readOnly_; }
  /// Whether the connection is up, connecting first when it is not.
  bool connected();
  /// A cached statement for `sql`, reset and unbound; null when it cannot be prepared.
  sqlite3_stmt* statement(const char* sql);
  /// Runs SQL without results (BEGIN, COMMIT, ...); false on failure.
  bool execute(const char* sql);
  /// The last failure's text and primary result code (SQLITE_BUSY, SQLITE_CORRUPT, ...).
  std::string lastError() const;
  int lastErrorCode() const;
  /// Whether the last failure was the connection itself, which is logged once already.
  bool failedToConnect() const { return db_ == nullptr; }

  /// The lines waiting to be written once the owner lets go of its lock.
  DeferredLog& log() { return log_; }

 private:
  SqliteDatabase(std::filesystem::path file, const char* schema, bool readOnly)
      : file_(std::move(file)), schema_(schema), readOnly_(readOnly) {}

  bool connect();
  void checkWal();
  bool prepareConnection(sqlite3* db);
  static bool executeSetup(sqlite3* db, const char* sql,
                           std::chrono::steady_clock::time_point deadline);
  void connectionFailed(sqlite3* db, int code);

  const std::filesystem::path file_;
  const char* const schema_;  // null for a read-only database
  const bool readOnly_;
  sqlite3* db_ = nullptr;
  std::map<const char*, sqlite3_stmt*> statements_;
  int connectFailure_ = SQLITE_OK;  // the last failed connection's result code
  std::string connectError_;
  bool walChecked_ = false;
  DeferredLog log_;
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

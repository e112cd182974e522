#include "platform/sqlite/SqliteDatabase.hpp"

#include <algorithm>
#include <chrono>
#include <thread>

#include "platform/FileModes.hpp"
#include "platform/sqlite/ReadOnlyOpen.hpp"
#include "platform/sqlite/WalCheck.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/runtime/Durations.hpp"

namespace vorn::platform {
namespace {

// How long a call waits for another connection's lock before it answers busy.
constexpr std::chrono::milliseconds kBusyTimeout{5000};

// Opening a descriptor of a file that SQLite has open and closing it again would drop the
// process's POSIX locks on it, SQLite's included; so an existing file is only chmod-ed.
bool ensurePrivateFile(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::exists(file, error))
    return makePrivateFile(file);
  restrictIfPresent(file);
  return true;
}

std::string storeFailure(const std::filesystem::path& file, std::string_view what) {
  return "Cannot open the store " + file.string() + ": " + std::string(what);
}

}  // namespace

std::unique_ptr<SqliteDatabase> SqliteDatabase::open(const std::filesystem::path& directory,
                                                     std::string_view fileName,
                                                     const char* schema) {
  auto file = directory / fileName;
  // SQLite gives its -wal and -shm files the database file's mode, so the database file
  // exists with 0600 before SQLite first touches it.
  const char* problem = !makePrivateDirectory(directory) ? "the directory cannot be created"
                        : !ensurePrivateFile(file)       ? "the file cannot be created"
                                                         : nullptr;
  if (problem != nullptr) {
    VORN_LOG_FAULT(LoggerCategory::database, storeFailure(file, problem));
    return nullptr;
  }
  std::unique_ptr<SqliteDatabase> db(new SqliteDatabase(std::move(file), schema, false));
  db->connect();
  db->log().write();
  return db;
}

std::unique_ptr<SqliteDatabase> SqliteDatabase::openReadOnly(const std::filesystem::path& directory,
                                                             std::string_view fileName) {
  auto file = directory / fileName;
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error))
    return nullptr;
  std::unique_ptr<SqliteDatabase> db(new SqliteDatabase(std::move(file), nullptr, true));
  db->connect();
  db->log().write();
  return db;
}

bool SqliteDatabase::connected() {
  return db_ != nullptr || connect();
}

bool SqliteDatabase::connect() {
  if (!walChecked_)
    checkWal();
  sqlite3* raw = nullptr;
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  const int opened = readOnly_ ? openReadOnlyConnection(file_, &raw)
                     : ensurePrivateFile(file_)
                         ? sqlite3_open_v2(file_.c_str(), &raw, flags, nullptr)
                         : SQLITE_CANTOPEN;
  if (opened != SQLITE_OK || !prepareConnection(raw)) {
    connectionFailed(raw, opened != SQLITE_OK ? opened : sqlite3_errcode(raw));
    return false;
  }
  db_ = raw;
  connectFailure_ = SQLITE_OK;
  if (!readOnly_) {
    restrictIfPresent(file_.string() + "-wal");
    restrictIfPresent(file_.string() + "-shm");
  }
  return true;
}

// Before the first connection, so that the log is read as SQLite's recovery will find it.
void SqliteDatabase::checkWal() {
  walChecked_ = true;
  const std::filesystem::path wal = file_.string() + "-wal";
  if (auto damage = walDamage(wal)) {
    log_.add(LogLevel::fault, [&] {
      return "Cannot read all of " + wal.string() + ": " + *damage +
             "; the changes from there on are lost.";
    });
  }
}

bool SqliteDatabase::prepareConnection(sqlite3* db) {
  const auto timeout =
      std::chrono::duration_cast<std::chrono::milliseconds>(durations::scaled(kBusyTimeout));
  sqlite3_busy_timeout(db, static_cast<int>(timeout.count()));
  if (readOnly_)
    return true;  // the file's journal mode and tables are the writer's business
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  for (const char* sql : {"PRAGMA journal_mode=WAL", "PRAGMA synchronous=NORMAL", schema_}) {
    if (!executeSetup(db, sql, deadline))
      return false;
  }
  return true;
}

// Two connections setting up the same new file at once (an app and its extension starting
// together) can each hold a read lock while waiting for the other's to go before switching the
// file to WAL or creating its tables. SQLite breaks that deadlock by answering busy at once to
// one of them, without its busy handler. So a busy setup statement is tried again until the
// busy time-out has passed, as a lock held too long would be, and both processes open the store.
bool SqliteDatabase::executeSetup(sqlite3* db, const char* sql,
                                  std::chrono::steady_clock::time_point deadline) {
  auto pause = std::chrono::milliseconds(1);
  for (;;) {
    const int result = sqlite3_exec(db, sql, nullptr, nullptr, nullptr);
    if ((result & 0xFF) != SQLITE_BUSY || std::chrono::steady_clock::now() >= deadline)
      return result == SQLITE_OK;
    std::this_thread::sleep_for(pause);
    pause = std::min(pause * 2, std::chrono::milliseconds(25));
  }
}

// Keeps the reason and closes the handle; the line is written for the first failure and
// whenever the reason changes, not on every call of a store that stays unusable.
void SqliteDatabase::connectionFailed(sqlite3* db, int code) {
  const int primary = code & 0xFF;
  std::string error = db != nullptr ? sqlite3_errmsg(db) : sqlite3_errstr(code);
  sqlite3_close(db);
  if (primary != connectFailure_)
    log_.add(LogLevel::fault, [&] { return storeFailure(file_, error); });
  connectFailure_ = primary;
  connectError_ = std::move(error);
}

SqliteDatabase::~SqliteDatabase() {
  for (const auto& entry : statements_)
    sqlite3_finalize(entry.second);
  sqlite3_close(db_);
}

sqlite3_stmt* SqliteDatabase::statement(const char* sql) {
  if (!connected())
    return nullptr;
  const auto cached = statements_.find(sql);
  if (cached != statements_.end())
    return cached->second;
  sqlite3_stmt* prepared = nullptr;
  if (sqlite3_prepare_v3(db_, sql, -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr) !=
      SQLITE_OK) {
    sqlite3_finalize(prepared);
    return nullptr;
  }
  statements_.emplace(sql, prepared);
  return prepared;
}

bool SqliteDatabase::execute(const char* sql) {
  return connected() && sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

std::string SqliteDatabase::lastError() const {
  return db_ != nullptr ? sqlite3_errmsg(db_) : connectError_;
}

int SqliteDatabase::lastErrorCode() const {
  return db_ != nullptr ? sqlite3_errcode(db_) & 0xFF : connectFailure_;
}

StatementScope::~StatementScope() {
  if (statement_ == nullptr)
    return;
  sqlite3_reset(statement_);
  sqlite3_clear_bindings(statement_);
}

void bindText(sqlite3_stmt* statement, int index, std::string_view text) {
  sqlite3_bind_text(statement, index, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

void bindOptionalText(sqlite3_stmt* statement, int index, const std::optional<std::string>& text) {
  if (text)
    bindText(statement, index, *text);
  else
    sqlite3_bind_null(statement, index);
}

void bindBlob(sqlite3_stmt* statement, int index, const std::vector<std::uint8_t>& bytes) {
  // A zero-length blob must stay a blob (not NULL), so it is bound with a valid pointer.
  static const std::uint8_t kEmpty = 0;
  sqlite3_bind_blob(statement, index, bytes.empty() ? &kEmpty : bytes.data(),
                    static_cast<int>(bytes.size()), SQLITE_TRANSIENT);
}

std::string columnText(sqlite3_stmt* statement, int column) {
  const auto* text = sqlite3_column_text(statement, column);
  if (text == nullptr)
    return std::string();
  return std::string(reinterpret_cast<const char*>(text),
                     static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
}

std::vector<std::uint8_t> columnBlob(sqlite3_stmt* statement, int column) {
  const auto* bytes = static_cast<const std::uint8_t*>(sqlite3_column_blob(statement, column));
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
  if (bytes == nullptr)
    return {};
  return std::vector<std::uint8_t>(bytes, bytes + size);
}

}  // namespace vorn::platform

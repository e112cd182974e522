#include "platform/sqlite/SqliteDatabase.hpp"

#include "platform/FileModes.hpp"
#include "vorn/logging/Log.hpp"

namespace vorn::platform {
namespace {

void logFailure(const std::filesystem::path& file, std::string_view what) {
  VORN_LOG_FAULT(LoggerCategory::database,
                 "Cannot open the store " + file.string() + ": " + std::string(what));
}

}  // namespace

std::unique_ptr<SqliteDatabase> SqliteDatabase::open(const std::filesystem::path& directory,
                                                     std::string_view fileName,
                                                     const char* schema) {
  const auto file = directory / fileName;
  const auto wal = std::filesystem::path(file.string() + "-wal");
  const auto shm = std::filesystem::path(file.string() + "-shm");
  if (!makePrivateDirectory(directory)) {
    logFailure(file, "the directory cannot be created");
    return nullptr;
  }
  // SQLite gives its -wal and -shm files the database file's mode, so the database file
  // exists with 0600 before SQLite first touches it.
  if (!makePrivateFile(file)) {
    logFailure(file, "the file cannot be created");
    return nullptr;
  }
  sqlite3* raw = nullptr;
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  if (sqlite3_open_v2(file.c_str(), &raw, flags, nullptr) != SQLITE_OK) {
    logFailure(file, raw ? sqlite3_errmsg(raw) : "out of memory");
    sqlite3_close(raw);
    return nullptr;
  }
  std::unique_ptr<SqliteDatabase> db(new SqliteDatabase(raw));
  sqlite3_busy_timeout(raw, 5000);
  if (!db->execute("PRAGMA journal_mode=WAL") || !db->execute("PRAGMA synchronous=NORMAL") ||
      !db->execute(schema)) {
    logFailure(file, db->lastError());
    return nullptr;
  }
  restrictIfPresent(file);
  restrictIfPresent(wal);
  restrictIfPresent(shm);
  return db;
}

SqliteDatabase::~SqliteDatabase() {
  for (const auto& entry : statements_)
    sqlite3_finalize(entry.second);
  sqlite3_close(db_);
}

sqlite3_stmt* SqliteDatabase::statement(const char* sql) {
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
  return sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

std::string SqliteDatabase::lastError() const {
  return sqlite3_errmsg(db_);
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

#include "platform/sqlite/SqliteDefaultsStore.hpp"

namespace vorn {
namespace {

constexpr const char* kSchema =
    "CREATE TABLE IF NOT EXISTS entries(suite TEXT NOT NULL, key TEXT NOT NULL, "
    "type INTEGER NOT NULL, value, PRIMARY KEY(suite, key)) WITHOUT ROWID;";
constexpr const char* kSelect = "SELECT type, value FROM entries WHERE suite = ?1 AND key = ?2";
constexpr const char* kUpsert =
    "INSERT INTO entries(suite, key, type, value) VALUES(?1, ?2, ?3, ?4) "
    "ON CONFLICT(suite, key) DO UPDATE SET type = excluded.type, value = excluded.value";
constexpr const char* kDelete = "DELETE FROM entries WHERE suite = ?1 AND key = ?2";
constexpr const char* kDeleteSuite = "DELETE FROM entries WHERE suite = ?1";
constexpr const char* kBegin = "BEGIN";
constexpr const char* kCommit = "COMMIT";
constexpr const char* kRollback = "ROLLBACK";

// The stored type tag is the variant's index, so reading back picks the same alternative.
enum StoredType : int { kBool = 0, kInteger = 1, kText = 2, kData = 3 };

void bindValue(sqlite3_stmt* statement, int index, const DefaultsValue& value) {
  switch (value.index()) {
    case kBool:
      sqlite3_bind_int(statement, index, std::get<bool>(value) ? 1 : 0);
      break;
    case kInteger:
      sqlite3_bind_int64(statement, index, std::get<std::int64_t>(value));
      break;
    case kText:
      platform::bindText(statement, index, std::get<std::string>(value));
      break;
    default:
      platform::bindBlob(statement, index, std::get<DefaultsData>(value));
      break;
  }
}

std::optional<DefaultsValue> columnValue(sqlite3_stmt* statement) {
  switch (sqlite3_column_int(statement, 0)) {
    case kBool:
      return DefaultsValue(sqlite3_column_int(statement, 1) != 0);
    case kInteger:
      return DefaultsValue(static_cast<std::int64_t>(sqlite3_column_int64(statement, 1)));
    case kText:
      return DefaultsValue(platform::columnText(statement, 1));
    case kData:
      return DefaultsValue(platform::columnBlob(statement, 1));
    default:
      return std::nullopt;
  }
}

// Runs a statement without results from the connection's cache: BEGIN and COMMIT around a few
// point reads would cost as much again if prepared anew each time.
bool runCached(platform::SqliteDatabase& db, const char* sql) {
  sqlite3_stmt* statement = db.statement(sql);
  if (statement == nullptr)
    return false;
  const platform::StatementScope scope(statement);
  return sqlite3_step(statement) == SQLITE_DONE;
}

}  // namespace

std::shared_ptr<DefaultsStore> DefaultsStore::openFile(const std::filesystem::path& directory) {
  auto db = platform::SqliteDatabase::open(directory, kFileName, kSchema);
  if (!db)
    return nullptr;
  return std::make_shared<platform::SqliteDefaultsStore>(std::move(db));
}

std::shared_ptr<DefaultsStore> DefaultsStore::openFileReadOnly(
    const std::filesystem::path& directory) {
  auto db = platform::SqliteDatabase::openReadOnly(directory, kFileName);
  if (!db)
    return nullptr;
  return std::make_shared<platform::SqliteDefaultsStore>(std::move(db));
}

namespace platform {

bool SqliteDefaultsStore::failure() {
  // A connection that cannot be made was logged when it failed, not again for every call.
  if (!db_->failedToConnect())
    db_->log().add(LogLevel::error, [&] { return "Defaults store failure: " + db_->lastError(); });
  return false;
}

// A row is there, so the key must not read as absent: a caller would write over it.
ReadResult<DefaultsValue> SqliteDefaultsStore::unreadableValue(std::string_view suite,
                                                               std::string_view key, int type) {
  db_->log().add(LogLevel::error, [&] {
    return "Unreadable default " + std::string(key) + " in suite " + std::string(suite) +
           ": unknown stored type " + std::to_string(type);
  });
  return ReadResult<DefaultsValue>::error(SQLITE_CORRUPT);
}

std::optional<DefaultsValue> SqliteDefaultsStore::object(std::string_view suite,
                                                         std::string_view key) {
  return read(suite, key).valueIfFound();
}

ReadResult<DefaultsValue> SqliteDefaultsStore::read(std::string_view suite, std::string_view key) {
  const LogWhenUnlocked logs(mutex_, db_->log());
  std::lock_guard lock(mutex_);
  return readLocked(suite, key);
}

// Outside a transaction every read takes and drops the file's shared locks on its own, two
// system calls each way; one transaction around the reads takes them once.
std::vector<ReadResult<DefaultsValue>> SqliteDefaultsStore::readSnapshot(
    std::string_view suite, std::span<const std::string> keys) {
  const LogWhenUnlocked logs(mutex_, db_->log());
  std::lock_guard lock(mutex_);
  const bool inTransaction = keys.size() > 1 && runCached(*db_, kBegin);
  std::vector<ReadResult<DefaultsValue>> results;
  results.reserve(keys.size());
  for (const std::string& key : keys)
    results.push_back(readLocked(suite, key));
  // A transaction left open would swallow the next write into it.
  if (inTransaction && !runCached(*db_, kCommit))
    runCached(*db_, kRollback);
  return results;
}

ReadResult<DefaultsValue> SqliteDefaultsStore::readLocked(std::string_view suite,
                                                          std::string_view key) {
  sqlite3_stmt* statement = db_->statement(kSelect);
  if (statement == nullptr) {
    failure();
    return ReadResult<DefaultsValue>::error(SQLITE_ERROR);
  }
  StatementScope scope(statement);
  bindText(statement, 1, suite);
  bindText(statement, 2, key);
  const int step = sqlite3_step(statement);
  if (step == SQLITE_ROW) {
    auto value = columnValue(statement);
    return value ? ReadResult<DefaultsValue>::found(std::move(*value))
                 : unreadableValue(suite, key, sqlite3_column_int(statement, 0));
  }
  if (step == SQLITE_DONE)
    return ReadResult<DefaultsValue>::absent();
  failure();
  return ReadResult<DefaultsValue>::error(step);
}

bool SqliteDefaultsStore::set(std::string_view suite, std::string_view key,
                              const DefaultsValue& value) {
  const LogWhenUnlocked logs(mutex_, db_->log());
  std::lock_guard lock(mutex_);
  sqlite3_stmt* statement = db_->statement(kUpsert);
  if (statement == nullptr)
    return failure();
  StatementScope scope(statement);
  bindText(statement, 1, suite);
  bindText(statement, 2, key);
  sqlite3_bind_int(statement, 3, static_cast<int>(value.index()));
  bindValue(statement, 4, value);
  return sqlite3_step(statement) == SQLITE_DONE || failure();
}

bool SqliteDefaultsStore::remove(std::string_view suite, std::string_view key) {
  const LogWhenUnlocked logs(mutex_, db_->log());
  std::lock_guard lock(mutex_);
  sqlite3_stmt* statement = db_->statement(kDelete);
  if (statement == nullptr)
    return failure();
  StatementScope scope(statement);
  bindText(statement, 1, suite);
  bindText(statement, 2, key);
  return sqlite3_step(statement) == SQLITE_DONE || failure();
}

bool SqliteDefaultsStore::removePersistentDomain(std::string_view suite) {
  const LogWhenUnlocked logs(mutex_, db_->log());
  std::lock_guard lock(mutex_);
  sqlite3_stmt* statement = db_->statement(kDeleteSuite);
  if (statement == nullptr)
    return failure();
  StatementScope scope(statement);
  bindText(statement, 1, suite);
  return sqlite3_step(statement) == SQLITE_DONE || failure();
}

}  // namespace platform
}  // namespace vorn

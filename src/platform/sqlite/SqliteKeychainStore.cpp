#include "platform/sqlite/SqliteKeychainStore.hpp"

#include "platform/KeychainRecord.hpp"
#include "platform/sqlite/KeychainAttributes.hpp"

namespace vorn {
namespace {

constexpr const char* kSchema =
    "CREATE TABLE IF NOT EXISTS items(id INTEGER PRIMARY KEY, service TEXT NOT NULL, "
    "account TEXT NOT NULL, accessible TEXT NOT NULL, data BLOB, attributes BLOB, "
    "UNIQUE(service, account));"
    "CREATE TABLE IF NOT EXISTS keys(id INTEGER PRIMARY KEY, tag TEXT NOT NULL, "
    "key_class INTEGER NOT NULL, key_type INTEGER NOT NULL, size_bits INTEGER NOT NULL, "
    "accessible TEXT NOT NULL, key_data BLOB NOT NULL, UNIQUE(tag, key_class));";

constexpr const char* kSelectItems =
    "SELECT id, service, account, accessible, data, attributes FROM items "
    "WHERE (?1 IS NULL OR service = ?1) AND (?2 IS NULL OR account = ?2) ORDER BY id";
constexpr const char* kInsertItem =
    "INSERT INTO items(service, account, accessible, data, attributes) VALUES(?1, ?2, ?3, ?4, ?5)";
constexpr const char* kUpdateItem =
    "UPDATE items SET service = ?2, account = ?3, accessible = ?4, data = ?5, attributes = ?6 "
    "WHERE id = ?1";
constexpr const char* kDeleteItems =
    "DELETE FROM items WHERE (?1 IS NULL OR service = ?1) AND (?2 IS NULL OR account = ?2)";
constexpr const char* kInsertKey =
    "INSERT INTO keys(tag, key_class, key_type, size_bits, accessible, key_data) "
    "VALUES(?1, ?2, ?3, ?4, ?5, ?6)";
constexpr const char* kSelectKey =
    "SELECT key_class, key_type, size_bits, accessible, key_data FROM keys "
    "WHERE tag = ?1 AND (?2 IS NULL OR key_class = ?2) ORDER BY id LIMIT 1";
constexpr const char* kDeleteKeys = "DELETE FROM keys WHERE tag = ?1";

void bindAttributes(sqlite3_stmt* statement, int index, const KeychainDictionary& attributes) {
  if (attributes.empty())
    sqlite3_bind_null(statement, index);
  else
    platform::bindBlob(statement, index, platform::encodeKeychainAttributes(attributes));
}

void bindData(sqlite3_stmt* statement, int index, const std::optional<KeychainData>& data) {
  if (data)
    platform::bindBlob(statement, index, *data);
  else
    sqlite3_bind_null(statement, index);
}

// Nothing when the stored attributes cannot be decoded.
std::optional<KeychainItem> itemFromRow(sqlite3_stmt* statement) {
  KeychainItem item;
  item.service = platform::columnText(statement, 1);
  item.account = platform::returnedAccount(platform::columnText(statement, 2));
  item.accessible = platform::columnText(statement, 3);
  if (sqlite3_column_type(statement, 4) != SQLITE_NULL)
    item.data = platform::columnBlob(statement, 4);
  if (sqlite3_column_type(statement, 5) != SQLITE_NULL) {
    auto attributes = platform::decodeKeychainAttributes(platform::columnBlob(statement, 5));
    if (!attributes)
      return std::nullopt;
    item.attributes = std::move(*attributes);
  }
  return item;
}

KeychainItem shapedForQuery(KeychainItem stored, const KeychainQuery& query) {
  KeychainItem item;
  if (query.returnAttributes) {
    item.service = std::move(stored.service);
    item.account = std::move(stored.account);
    item.accessible = std::move(stored.accessible);
    item.attributes = std::move(stored.attributes);
  }
  if (query.returnData)
    item.data = stored.data.value_or(KeychainData());
  return item;
}

void applyChanges(KeychainItem& item, const KeychainItem& changes) {
  if (changes.service)
    item.service = changes.service;
  if (changes.account)
    item.account = platform::returnedAccount(*changes.account);
  if (changes.accessible)
    item.accessible = changes.accessible;
  if (changes.data)
    item.data = changes.data;
  for (const auto& [name, value] : changes.attributes)
    item.attributes[name] = value;
}

// A lock held by another connection is worth asking again about; any other failure means the
// file cannot be used now. Neither may read as errSecItemNotFound, or a caller would create
// new items, new key material among them, over ones it merely could not read.
OSStatus statusForFailure(int code) {
  return code == SQLITE_BUSY || code == SQLITE_LOCKED ? errSecInteractionNotAllowed
                                                      : errSecNotAvailable;
}

}  // namespace

std::shared_ptr<KeychainStore> KeychainStore::openFile(const std::filesystem::path& directory) {
  auto db = platform::SqliteDatabase::open(directory, kFileName, kSchema);
  if (!db)
    return nullptr;
  return std::make_shared<platform::SqliteKeychainStore>(std::move(db));
}

std::shared_ptr<KeychainStore> KeychainStore::openFileReadOnly(
    const std::filesystem::path& directory) {
  auto db = platform::SqliteDatabase::openReadOnly(directory, kFileName);
  if (!db)
    return nullptr;
  return std::make_shared<platform::SqliteKeychainStore>(std::move(db));
}

namespace platform {

OSStatus SqliteKeychainStore::failure() {
  // A connection that cannot be made was logged when it failed, not again for every call.
  if (!db_->failedToConnect())
    db_->log().add(LogLevel::error, [&] { return "Keychain store failure: " + db_->lastError(); });
  return statusForFailure(db_->lastErrorCode());
}

OSStatus SqliteKeychainStore::unreadableItem(sqlite3_stmt* statement) {
  db_->log().add(LogLevel::error, [&] {
    return "Unreadable keychain item for service " + columnText(statement, 1) +
           ": its stored attributes cannot be decoded.";
  });
  return errSecDecode;
}

OSStatus SqliteKeychainStore::selectMatching(const KeychainQuery& query, bool onlyFirst,
                                             std::vector<Row>& rows) {
  sqlite3_stmt* statement = db_->statement(kSelectItems);
  if (statement == nullptr)
    return failure();
  StatementScope scope(statement);
  bindOptionalText(statement, 1, query.service);
  bindOptionalText(statement, 2, query.account);
  int step;
  while ((step = sqlite3_step(statement)) == SQLITE_ROW) {
    auto item = itemFromRow(statement);
    if (!item)
      return unreadableItem(statement);
    rows.push_back(Row{sqlite3_column_int64(statement, 0), std::move(*item)});
    if (onlyFirst)
      return errSecSuccess;
  }
  if (step != SQLITE_DONE)
    return failure();
  return errSecSuccess;
}

OSStatus SqliteKeychainStore::copyMatching(const KeychainQuery& query,
                                           std::vector<KeychainItem>& result) {
  result.clear();
  const LogWhenUnlocked logs(mutex_, db_->log());
  std::vector<Row> rows;
  {
    std::lock_guard lock(mutex_);
    const OSStatus status = selectMatching(query, query.matchLimit == MatchLimit::one, rows);
    if (status != errSecSuccess)
      return status;
  }
  for (Row& row : rows)
    result.push_back(shapedForQuery(std::move(row.item), query));
  return result.empty() ? errSecItemNotFound : errSecSuccess;
}

OSStatus SqliteKeychainStore::add(const KeychainItem& item) {
  const LogWhenUnlocked logs(mutex_, db_->log());
  std::lock_guard lock(mutex_);
  sqlite3_stmt* statement = db_->statement(kInsertItem);
  if (statement == nullptr)
    return failure();
  StatementScope scope(statement);
  bindText(statement, 1, item.service.value_or(std::string()));
  bindText(statement, 2, storedAccount(item.account));
  bindText(statement, 3, storedAccessible(item.accessible));
  bindData(statement, 4, item.data);
  bindAttributes(statement, 5, item.attributes);
  const int step = sqlite3_step(statement);
  if (step == SQLITE_CONSTRAINT)
    return errSecDuplicateItem;
  return step == SQLITE_DONE ? errSecSuccess : failure();
}

OSStatus SqliteKeychainStore::writeRow(const Row& row) {
  sqlite3_stmt* statement = db_->statement(kUpdateItem);
  if (statement == nullptr)
    return failure();
  StatementScope scope(statement);
  sqlite3_bind_int64(statement, 1, row.id);
  bindText(statement, 2, row.item.service.value_or(std::string()));
  bindText(statement, 3, storedAccount(row.item.account));
  bindText(statement, 4, storedAccessible(row.item.accessible));
  bindData(statement, 5, row.item.data);
  bindAttributes(statement, 6, row.item.attributes);
  const int step = sqlite3_step(statement);
  if (step == SQLITE_CONSTRAINT)
    return errSecDuplicateItem;
  return step == SQLITE_DONE ? errSecSuccess : failure();
}

OSStatus SqliteKeychainStore::update(const KeychainQuery& query, const KeychainItem& changes) {
  const LogWhenUnlocked logs(mutex_, db_->log());
  std::lock_guard lock(mutex_);
  if (!beginChange())
    return failure();
  std::vector<Row> rows;
  OSStatus status = selectMatching(query, false, rows);
  if (status == errSecSuccess && rows.empty())
    status = errSecItemNotFound;
  for (std::size_t i = 0; status == errSecSuccess && i < rows.size(); ++i) {
    applyChanges(rows[i].item, changes);
    status = writeRow(rows[i]);
  }
  if (status != errSecSuccess) {
    endChange(false);
    return status;
  }
  return endChange(true) ? errSecSuccess : failure();
}

OSStatus SqliteKeychainStore::remove(const KeychainQuery& query) {
  const LogWhenUnlocked logs(mutex_, db_->log());
  std::lock_guard lock(mutex_);
  sqlite3_stmt* statement = db_->statement(kDeleteItems);
  if (statement == nullptr)
    return failure();
  StatementScope scope(statement);
  bindOptionalText(statement, 1, query.service);
  bindOptionalText(statement, 2, query.account);
  if (sqlite3_step(statement) != SQLITE_DONE)
    return failure();
  return sqlite3_changes(sqlite3_db_handle(statement)) == 0 ? errSecItemNotFound : errSecSuccess;
}

OSStatus SqliteKeychainStore::storeKey(const KeychainKey& key) {
  const LogWhenUnlocked logs(mutex_, db_->log());
  std::lock_guard lock(mutex_);
  sqlite3_stmt* statement = db_->statement(kInsertKey);
  if (statement == nullptr)
    return failure();
  StatementScope scope(statement);
  bindText(statement, 1, key.applicationTag);
  sqlite3_bind_int(statement, 2, static_cast<int>(key.keyClass));
  sqlite3_bind_int(statement, 3, static_cast<int>(key.keyType));
  sqlite3_bind_int(statement, 4, key.keySizeInBits);
  bindText(statement, 5, storedAccessible(key.accessible));
  bindBlob(statement, 6, key.keyData);
  const int step = sqlite3_step(statement);
  if (step == SQLITE_CONSTRAINT)
    return errSecDuplicateItem;
  return step == SQLITE_DONE ? errSecSuccess : failure();
}

OSStatus SqliteKeychainStore::loadKey(std::string_view applicationTag,
                                      std::optional<KeychainKeyClass> keyClass, KeychainKey& key) {
  const LogWhenUnlocked logs(mutex_, db_->log());
  std::lock_guard lock(mutex_);
  sqlite3_stmt* statement = db_->statement(kSelectKey);
  if (statement == nullptr)
    return failure();
  StatementScope scope(statement);
  bindText(statement, 1, applicationTag);
  if (keyClass)
    sqlite3_bind_int(statement, 2, static_cast<int>(*keyClass));
  const int step = sqlite3_step(statement);
  if (step == SQLITE_DONE)
    return errSecItemNotFound;
  if (step != SQLITE_ROW)
    return failure();
  key.applicationTag = std::string(applicationTag);
  key.keyClass = static_cast<KeychainKeyClass>(sqlite3_column_int(statement, 0));
  key.keyType = static_cast<KeychainKeyType>(sqlite3_column_int(statement, 1));
  key.keySizeInBits = sqlite3_column_int(statement, 2);
  key.accessible = columnText(statement, 3);
  key.keyData = columnBlob(statement, 4);
  return errSecSuccess;
}

OSStatus SqliteKeychainStore::deleteKey(std::string_view applicationTag) {
  const LogWhenUnlocked logs(mutex_, db_->log());
  std::lock_guard lock(mutex_);
  sqlite3_stmt* statement = db_->statement(kDeleteKeys);
  if (statement == nullptr)
    return failure();
  StatementScope scope(statement);
  bindText(statement, 1, applicationTag);
  if (sqlite3_step(statement) != SQLITE_DONE)
    return failure();
  return sqlite3_changes(sqlite3_db_handle(statement)) == 0 ? errSecItemNotFound : errSecSuccess;
}

}  // namespace platform
}  // namespace vorn

#include "StoreTables.hpp"

#include "platform/sqlite/ReadOnlyOpen.hpp"

namespace vorn::inspect {
namespace {

std::string text(sqlite3_stmt* statement, int column) {
  const auto* chars = sqlite3_column_text(statement, column);
  if (chars == nullptr)
    return std::string();
  return std::string(reinterpret_cast<const char*>(chars),
                     static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
}

Blob blob(sqlite3_stmt* statement, int column) {
  const auto* bytes = static_cast<const std::uint8_t*>(sqlite3_column_blob(statement, column));
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
  return bytes == nullptr ? Blob() : Blob(bytes, bytes + size);
}

}  // namespace

std::unique_ptr<StoreFile> StoreFile::open(const std::filesystem::path& file, std::string& error) {
  sqlite3* db = nullptr;
  const int opened = platform::openReadOnlyConnection(file, &db);
  if (opened != SQLITE_OK) {
    error = db != nullptr ? sqlite3_errmsg(db) : sqlite3_errstr(opened);
    sqlite3_close(db);
    return nullptr;
  }
  // A live app may hold a write lock for a moment; wait for it rather than fail at once.
  sqlite3_busy_timeout(db, 5000);
  return std::unique_ptr<StoreFile>(new StoreFile(db));
}

StoreFile::~StoreFile() {
  sqlite3_close(db_);
}

template <class Row, class Read>
Rows<Row> StoreFile::select(const char* sql, Read read) {
  Rows<Row> result;
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db_, sql, -1, &statement, nullptr) != SQLITE_OK) {
    result.error = sqlite3_errmsg(db_);
    sqlite3_finalize(statement);
    return result;
  }
  int step;
  while ((step = sqlite3_step(statement)) == SQLITE_ROW)
    result.rows.push_back(read(statement));
  if (step != SQLITE_DONE) {
    result.error = sqlite3_errmsg(db_);
    result.rows.clear();
  }
  sqlite3_finalize(statement);
  return result;
}

Rows<ItemRow> StoreFile::items() {
  return select<ItemRow>(
      "SELECT service, account, accessible, data, length(attributes) FROM items ORDER BY id",
      [](sqlite3_stmt* statement) {
        ItemRow row;
        row.service = text(statement, 0);
        row.account = text(statement, 1);
        row.accessible = text(statement, 2);
        if (sqlite3_column_type(statement, 3) != SQLITE_NULL)
          row.data = blob(statement, 3);
        row.attributeBytes = static_cast<std::size_t>(sqlite3_column_int64(statement, 4));
        return row;
      });
}

Rows<KeyRow> StoreFile::keys() {
  return select<KeyRow>(
      "SELECT tag, key_class, key_type, size_bits, accessible, key_data FROM keys ORDER BY id",
      [](sqlite3_stmt* statement) {
        KeyRow row;
        row.tag = text(statement, 0);
        row.keyClass = sqlite3_column_int(statement, 1);
        row.keyType = sqlite3_column_int(statement, 2);
        row.sizeBits = sqlite3_column_int(statement, 3);
        row.accessible = text(statement, 4);
        row.data = blob(statement, 5);
        return row;
      });
}

Rows<EntryRow> StoreFile::entries() {
  return select<EntryRow>("SELECT suite, key, type, value FROM entries ORDER BY suite, key",
                          [](sqlite3_stmt* statement) {
                            EntryRow row;
                            row.suite = text(statement, 0);
                            row.key = text(statement, 1);
                            row.type = sqlite3_column_int(statement, 2);
                            row.integer = sqlite3_column_int64(statement, 3);
                            if (row.type == static_cast<int>(EntryType::text) ||
                                row.type == static_cast<int>(EntryType::data))
                              row.bytes = blob(statement, 3);
                            return row;
                          });
}

}  // namespace vorn::inspect

#include "CollectorStore.hpp"

#include <chrono>

namespace vorn::collector {
namespace {

constexpr const char* kSchema = R"sql(
  PRAGMA journal_mode = WAL;
  CREATE TABLE IF NOT EXISTS requests (
    id INTEGER PRIMARY KEY, at INTEGER, method TEXT, path TEXT, status INTEGER, body TEXT);
  CREATE TABLE IF NOT EXISTS events (id TEXT, name TEXT, body TEXT);
  CREATE TABLE IF NOT EXISTS registrations (id INTEGER PRIMARY KEY, at INTEGER, body TEXT);
  CREATE TABLE IF NOT EXISTS inbox (id TEXT PRIMARY KEY, subject TEXT, read INTEGER);
  INSERT OR IGNORE INTO inbox VALUES ('m1', 'Welcome to the demo', 0),
                                      ('m2', 'Your order has shipped', 0),
                                      ('m3', 'A discount for you', 0);
)sql";

std::string columnText(sqlite3_stmt* statement, int column) {
  const auto* text = sqlite3_column_text(statement, column);
  return text ? reinterpret_cast<const char*>(text) : "";
}

}  // namespace

CollectorStore::CollectorStore(const std::filesystem::path& file) {
  if (sqlite3_open(file.c_str(), &db_) != SQLITE_OK || !exec(kSchema)) {
    sqlite3_close(db_);
    db_ = nullptr;
  }
}

CollectorStore::~CollectorStore() {
  sqlite3_close(db_);
}

bool CollectorStore::exec(const char* sql) {
  return sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

template <class Row>
bool CollectorStore::query(const char* sql, std::initializer_list<std::string_view> params,
                           Row row) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db_, sql, -1, &statement, nullptr) != SQLITE_OK)
    return false;
  int index = 1;
  for (std::string_view param : params)
    sqlite3_bind_text(statement, index++, param.data(), static_cast<int>(param.size()),
                      SQLITE_TRANSIENT);
  int rc;
  while ((rc = sqlite3_step(statement)) == SQLITE_ROW)
    row(statement);
  sqlite3_finalize(statement);
  return rc == SQLITE_DONE;
}

void CollectorStore::recordRequest(std::string_view method, std::string_view path, int status,
                                   std::string_view body) {
  std::lock_guard lock(mutex_);
  const auto now = std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(
                                      std::chrono::system_clock::now().time_since_epoch())
                                      .count());
  query("INSERT INTO requests (at, method, path, status, body) VALUES (?, ?, ?, ?, ?)",
        {now, method, path, std::to_string(status), body}, [](sqlite3_stmt*) {});
}

void CollectorStore::recordEvent(std::string_view id, std::string_view name,
                                 std::string_view body) {
  std::lock_guard lock(mutex_);
  query("INSERT INTO events VALUES (?, ?, ?)", {id, name, body}, [](sqlite3_stmt*) {});
}

void CollectorStore::recordRegistration(std::string_view body) {
  std::lock_guard lock(mutex_);
  query("INSERT INTO registrations (at, body) VALUES (strftime('%s','now'), ?)", {body},
        [](sqlite3_stmt*) {});
}

nlohmann::json CollectorStore::inbox() {
  std::lock_guard lock(mutex_);
  auto messages = nlohmann::json::array();
  query("SELECT id, subject, read FROM inbox ORDER BY id", {}, [&](sqlite3_stmt* s) {
    messages.push_back({{"id", columnText(s, 0)},
                        {"subject", columnText(s, 1)},
                        {"read", sqlite3_column_int(s, 2) != 0}});
  });
  return messages;
}

bool CollectorStore::updateMessage(std::string_view id, bool deleted) {
  std::lock_guard lock(mutex_);
  query(deleted ? "DELETE FROM inbox WHERE id = ?" : "UPDATE inbox SET read = 1 WHERE id = ?", {id},
        [](sqlite3_stmt*) {});
  return sqlite3_changes(db_) > 0;
}

nlohmann::json CollectorStore::summary() {
  std::lock_guard lock(mutex_);
  nlohmann::json summary{{"requests", nlohmann::json::object()},
                         {"events", nlohmann::json::object()},
                         {"duplicateEventIds", 0},
                         {"lastRegistration", nullptr}};
  query("SELECT path, status, COUNT(*) FROM requests GROUP BY path, status ORDER BY path, status",
        {}, [&](sqlite3_stmt* s) {
          summary["requests"][columnText(s, 0)][columnText(s, 1)] = sqlite3_column_int(s, 2);
        });
  query("SELECT name, COUNT(*) FROM events GROUP BY name ORDER BY name", {},
        [&](sqlite3_stmt* s) { summary["events"][columnText(s, 0)] = sqlite3_column_int(s, 1); });
  query("SELECT COUNT(*) - COUNT(DISTINCT id) FROM events", {},
        [&](sqlite3_stmt* s) { summary["duplicateEventIds"] = sqlite3_column_int(s, 0); });
  query("SELECT body FROM registrations ORDER BY id DESC LIMIT 1", {}, [&](sqlite3_stmt* s) {
    summary["lastRegistration"] = nlohmann::json::parse(columnText(s, 0), nullptr, false);
  });
  return summary;
}

}  // namespace vorn::collector

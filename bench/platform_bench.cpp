// Costs of the platform stores, each next to its floor: a durable defaults write and a point
// read against a prepared SQLite upsert / select on a table of the same shape, the in-memory
// defaults against a mutex and a map, and key store item round trips against the SQLite
// statements they come down to.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "RawFloors.hpp"
#include "vorn/platform/DefaultsStore.hpp"
#include "vorn/platform/KeychainStore.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace {

// Each write stores a text unlike the one before it under the same key, so SQLite has a page
// to rewrite every time.
void BM_DefaultsSetString(benchmark::State& state) {
  const vorn::testing::TemporaryDirectory temporary;
  auto suite = vorn::DefaultsStore::openFile(temporary.path())->suite("bench");
  std::uint64_t i = 0;
  for (auto _ : state) {
    if (!suite.setString(rawfloor::distinctText20(i++), "key")) {
      state.SkipWithError("write failed");
      break;
    }
  }
}
BENCHMARK(BM_DefaultsSetString);

void BM_Floor_DefaultsSetString(benchmark::State& state) {
  const vorn::testing::TemporaryDirectory temporary;
  rawfloor::Entries entries(temporary.path() / "raw.db");
  std::uint64_t i = 0;
  for (auto _ : state) {
    if (!entries.writeText("bench", "key", rawfloor::distinctText20(i++))) {
      state.SkipWithError("write failed");
      break;
    }
  }
}
BENCHMARK(BM_Floor_DefaultsSetString);

void BM_DefaultsStringFor(benchmark::State& state) {
  const vorn::testing::TemporaryDirectory temporary;
  auto suite = vorn::DefaultsStore::openFile(temporary.path())->suite("bench");
  suite.setString("value", "key");
  for (auto _ : state) {
    if (suite.stringFor("key") != "value") {
      state.SkipWithError("value did not read back");
      break;
    }
  }
}
BENCHMARK(BM_DefaultsStringFor);

void BM_Floor_DefaultsStringFor(benchmark::State& state) {
  const vorn::testing::TemporaryDirectory temporary;
  rawfloor::Entries entries(temporary.path() / "raw.db");
  entries.writeText("bench", "key", "value");
  rawfloor::Bytes out;
  for (auto _ : state) {
    if (!entries.read("bench", "key", out)) {
      state.SkipWithError("value did not read back");
      break;
    }
    std::string text(out.begin(), out.end());
    benchmark::DoNotOptimize(text.data());
  }
}
BENCHMARK(BM_Floor_DefaultsStringFor);

void BM_MemoryDefaultsSetString(benchmark::State& state) {
  auto suite = vorn::DefaultsStore::inMemory()->suite("bench");
  std::uint64_t i = 0;
  for (auto _ : state)
    benchmark::DoNotOptimize(suite.setString(rawfloor::distinctText20(i++), "key"));
}
BENCHMARK(BM_MemoryDefaultsSetString);

void BM_Floor_MutexMapSetString(benchmark::State& state) {
  std::mutex mutex;
  std::map<std::pair<std::string, std::string>, std::string, std::less<>> values;
  std::uint64_t i = 0;
  for (auto _ : state) {
    std::string value = rawfloor::distinctText20(i++);
    std::lock_guard lock(mutex);
    values[{"bench", "key"}] = std::move(value);
    benchmark::DoNotOptimize(values.size());
  }
}
BENCHMARK(BM_Floor_MutexMapSetString);

// A one-byte item whose byte changes on every update.
void BM_KeychainUpdateItem(benchmark::State& state) {
  const vorn::testing::TemporaryDirectory temporary;
  auto store = vorn::KeychainStore::openFile(temporary.path());
  store->add(vorn::KeychainItem{"svc", std::nullopt, std::nullopt, vorn::KeychainData{0}, {}});
  vorn::KeychainQuery query;
  query.service = "svc";
  vorn::KeychainItem changes;
  std::uint8_t i = 0;
  for (auto _ : state) {
    changes.data = vorn::KeychainData{++i};
    if (store->update(query, changes) != vorn::errSecSuccess) {
      state.SkipWithError("update failed");
      break;
    }
  }
}
BENCHMARK(BM_KeychainUpdateItem);

// The key store file's item table; the floor's statements use its unique index.
constexpr const char* kItemsSchema =
    "CREATE TABLE IF NOT EXISTS items(id INTEGER PRIMARY KEY, service TEXT NOT NULL, "
    "account TEXT NOT NULL, accessible TEXT NOT NULL, data BLOB, attributes BLOB, "
    "UNIQUE(service, account))";

// An update as one transaction: find the row, write it, commit.
void BM_Floor_KeychainUpdateItem(benchmark::State& state) {
  const vorn::testing::TemporaryDirectory temporary;
  rawfloor::Database db(temporary.path() / "raw.db", kItemsSchema);
  db.exec("INSERT INTO items(service, account, accessible, data) VALUES('svc', '', 'ak', x'00')");
  sqlite3_stmt* begin = db.prepare("BEGIN IMMEDIATE");
  sqlite3_stmt* commit = db.prepare("COMMIT");
  sqlite3_stmt* select = db.prepare("SELECT id, data FROM items WHERE service = ?1");
  sqlite3_stmt* update = db.prepare("UPDATE items SET data = ?2 WHERE id = ?1");
  rawfloor::Bytes data(1);
  for (auto _ : state) {
    data[0] = static_cast<std::uint8_t>(data[0] + 1);
    bool ok = rawfloor::stepOnce(begin, SQLITE_DONE);
    rawfloor::bindText(select, 1, "svc");
    ok = ok && sqlite3_step(select) == SQLITE_ROW;
    const sqlite3_int64 id = sqlite3_column_int64(select, 0);
    sqlite3_reset(select);
    sqlite3_bind_int64(update, 1, id);
    rawfloor::bindBlob(update, 2, data);
    ok = rawfloor::stepOnce(update, SQLITE_DONE) && ok;
    ok = rawfloor::stepOnce(commit, SQLITE_DONE) && ok;
    if (!ok) {
      state.SkipWithError("update failed");
      break;
    }
  }
}
BENCHMARK(BM_Floor_KeychainUpdateItem);

void BM_KeychainCopyMatching(benchmark::State& state) {
  const vorn::testing::TemporaryDirectory temporary;
  auto store = vorn::KeychainStore::openFile(temporary.path());
  store->add(vorn::KeychainItem{"svc", std::nullopt, std::nullopt, vorn::KeychainData(32), {}});
  vorn::KeychainQuery query;
  query.service = "svc";
  query.returnAttributes = true;
  query.returnData = true;
  std::vector<vorn::KeychainItem> found;
  for (auto _ : state) {
    if (store->copyMatching(query, found) != vorn::errSecSuccess || found.size() != 1) {
      state.SkipWithError("item not found");
      break;
    }
  }
}
BENCHMARK(BM_KeychainCopyMatching);

// The row's columns copied out of a prepared select.
void BM_Floor_KeychainCopyMatching(benchmark::State& state) {
  const vorn::testing::TemporaryDirectory temporary;
  rawfloor::Database db(temporary.path() / "raw.db", kItemsSchema);
  db.exec(
      "INSERT INTO items(service, account, accessible, data) "
      "VALUES('svc', '', 'ak', zeroblob(32))");
  sqlite3_stmt* select = db.prepare(
      "SELECT id, service, account, accessible, data, attributes FROM items "
      "WHERE service = ?1");
  for (auto _ : state) {
    rawfloor::bindText(select, 1, "svc");
    if (sqlite3_step(select) != SQLITE_ROW) {
      state.SkipWithError("item not found");
      break;
    }
    std::string service(reinterpret_cast<const char*>(sqlite3_column_text(select, 1)));
    std::string account(reinterpret_cast<const char*>(sqlite3_column_text(select, 2)));
    std::string accessible(reinterpret_cast<const char*>(sqlite3_column_text(select, 3)));
    const auto* data = static_cast<const std::uint8_t*>(sqlite3_column_blob(select, 4));
    rawfloor::Bytes bytes(data, data + sqlite3_column_bytes(select, 4));
    sqlite3_reset(select);
    benchmark::DoNotOptimize(bytes.data());
    benchmark::DoNotOptimize(service.data());
    benchmark::DoNotOptimize(account.data());
    benchmark::DoNotOptimize(accessible.data());
  }
}
BENCHMARK(BM_Floor_KeychainCopyMatching);

}  // namespace

BENCHMARK_MAIN();

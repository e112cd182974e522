// Costs of the platform stores: a durable defaults write and a point read on the SQLite
// backend next to the same statements run on a bare connection, and item round trips on the
// key store. Run: build/platform/bench/vorn_platform_bench
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

#include "vorn/platform/DefaultsStore.hpp"
#include "vorn/platform/KeychainStore.hpp"

namespace {

std::filesystem::path freshDirectory() {
  std::string pattern = (std::filesystem::temp_directory_path() / "vorn-bench-XXXXXX").string();
  return ::mkdtemp(pattern.data());
}

void BM_DefaultsSetString(benchmark::State& state) {
  const auto dir = freshDirectory();
  auto suite = vorn::DefaultsStore::openFile(dir)->suite("bench");
  std::int64_t i = 0;
  for (auto _ : state)
    benchmark::DoNotOptimize(suite.setString("value-" + std::to_string(i++ % 64), "key"));
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_DefaultsSetString);

void BM_DefaultsStringFor(benchmark::State& state) {
  const auto dir = freshDirectory();
  auto suite = vorn::DefaultsStore::openFile(dir)->suite("bench");
  suite.setString("value", "key");
  for (auto _ : state)
    benchmark::DoNotOptimize(suite.stringFor("key"));
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_DefaultsStringFor);

// The floor: the same upsert and select on a bare WAL connection with cached statements.
void BM_RawSqliteUpsert(benchmark::State& state) {
  const auto dir = freshDirectory();
  sqlite3* db = nullptr;
  sqlite3_open((dir / "raw.db").c_str(), &db);
  sqlite3_exec(db,
               "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; CREATE TABLE t(s TEXT, k "
               "TEXT, v, PRIMARY KEY(s, k)) WITHOUT ROWID;",
               nullptr, nullptr, nullptr);
  sqlite3_stmt* upsert = nullptr;
  sqlite3_prepare_v2(db,
                     "INSERT INTO t VALUES(?1, ?2, ?3) ON CONFLICT(s, k) DO UPDATE SET v = "
                     "excluded.v",
                     -1, &upsert, nullptr);
  std::int64_t i = 0;
  for (auto _ : state) {
    const std::string value = "value-" + std::to_string(i++ % 64);
    sqlite3_bind_text(upsert, 1, "bench", -1, SQLITE_STATIC);
    sqlite3_bind_text(upsert, 2, "key", -1, SQLITE_STATIC);
    sqlite3_bind_text(upsert, 3, value.c_str(), -1, SQLITE_TRANSIENT);
    sqlite3_step(upsert);
    sqlite3_reset(upsert);
  }
  sqlite3_finalize(upsert);
  sqlite3_close(db);
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_RawSqliteUpsert);

void BM_RawSqlitePointRead(benchmark::State& state) {
  const auto dir = freshDirectory();
  sqlite3* db = nullptr;
  sqlite3_open((dir / "raw.db").c_str(), &db);
  sqlite3_exec(db,
               "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; CREATE TABLE t(s TEXT, k "
               "TEXT, v, PRIMARY KEY(s, k)) WITHOUT ROWID; INSERT INTO t VALUES('bench', 'key', "
               "'value');",
               nullptr, nullptr, nullptr);
  sqlite3_stmt* select = nullptr;
  sqlite3_prepare_v2(db, "SELECT v FROM t WHERE s = ?1 AND k = ?2", -1, &select, nullptr);
  for (auto _ : state) {
    sqlite3_bind_text(select, 1, "bench", -1, SQLITE_STATIC);
    sqlite3_bind_text(select, 2, "key", -1, SQLITE_STATIC);
    if (sqlite3_step(select) == SQLITE_ROW)
      benchmark::DoNotOptimize(
          std::string(reinterpret_cast<const char*>(sqlite3_column_text(select, 0))));
    sqlite3_reset(select);
  }
  sqlite3_finalize(select);
  sqlite3_close(db);
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_RawSqlitePointRead);

void BM_KeychainUpdateItem(benchmark::State& state) {
  const auto dir = freshDirectory();
  auto store = vorn::KeychainStore::openFile(dir);
  store->add(vorn::KeychainItem{"svc", std::nullopt, std::nullopt, vorn::KeychainData{0}, {}});
  vorn::KeychainQuery query;
  query.service = "svc";
  vorn::KeychainItem changes;
  std::uint8_t i = 0;
  for (auto _ : state) {
    changes.data = vorn::KeychainData{i++};
    benchmark::DoNotOptimize(store->update(query, changes));
  }
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_KeychainUpdateItem);

void BM_KeychainCopyMatching(benchmark::State& state) {
  const auto dir = freshDirectory();
  auto store = vorn::KeychainStore::openFile(dir);
  store->add(vorn::KeychainItem{"svc", std::nullopt, std::nullopt, vorn::KeychainData(32), {}});
  vorn::KeychainQuery query;
  query.service = "svc";
  query.returnAttributes = true;
  query.returnData = true;
  std::vector<vorn::KeychainItem> found;
  for (auto _ : state)
    benchmark::DoNotOptimize(store->copyMatching(query, found));
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_KeychainCopyMatching);

}  // namespace

BENCHMARK_MAIN();

// Costs of the file-backed platform stores: a durable defaults write and a point read, and
// item round trips on the key store, each next to the in-memory backend as the floor of the
// store's own bookkeeping. Run: build/platform/bench/vorn_platform_bench
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "vorn/platform/DefaultsStore.hpp"
#include "vorn/platform/KeychainStore.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace {

void BM_DefaultsSetString(benchmark::State& state) {
  const vorn::testing::TemporaryDirectory temporary;
  const auto& dir = temporary.path();
  auto suite = vorn::DefaultsStore::openFile(dir)->suite("bench");
  std::int64_t i = 0;
  for (auto _ : state)
    benchmark::DoNotOptimize(suite.setString("value-" + std::to_string(i++ % 64), "key"));
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_DefaultsSetString);

void BM_DefaultsStringFor(benchmark::State& state) {
  const vorn::testing::TemporaryDirectory temporary;
  const auto& dir = temporary.path();
  auto suite = vorn::DefaultsStore::openFile(dir)->suite("bench");
  suite.setString("value", "key");
  for (auto _ : state)
    benchmark::DoNotOptimize(suite.stringFor("key"));
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_DefaultsStringFor);

void BM_MemoryDefaultsSetString(benchmark::State& state) {
  auto suite = vorn::DefaultsStore::inMemory()->suite("bench");
  std::int64_t i = 0;
  for (auto _ : state)
    benchmark::DoNotOptimize(suite.setString("value-" + std::to_string(i++ % 64), "key"));
}
BENCHMARK(BM_MemoryDefaultsSetString);

void BM_KeychainUpdateItem(benchmark::State& state) {
  const vorn::testing::TemporaryDirectory temporary;
  const auto& dir = temporary.path();
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
  const vorn::testing::TemporaryDirectory temporary;
  const auto& dir = temporary.path();
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

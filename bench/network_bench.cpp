// Sequential HTTP exchanges on a kept-alive loopback connection: the libcurl transport and the
// network manager next to raw libcurl with one reused easy handle, the floor the transport's
// pool, option setup and result building (and the manager's checks) are measured against; and
// the Retry-After check of a name without deadlines next to the two encrypted key look-ups it
// comes down to, done with EVP and SQLite (or a mutex and a map) directly.
#include <benchmark/benchmark.h>
#include <curl/curl.h>

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <numeric>
#include <string>

#include "RawFloors.hpp"
#include "support/LoopbackServer.hpp"
#include "vorn/network/NetworkManager.hpp"
#include "vorn/platform/DefaultsStore.hpp"
#include "vorn/platform/HttpTransport.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace {

// One server for the whole program, started on first use, so every benchmark of this file
// talks to the same loopback endpoint and pays no start-up inside its timing.
class LoopbackFixture {
 public:
  static LoopbackFixture& shared() {
    static LoopbackFixture fixture;
    return fixture;
  }

  /// The URL of a GET that answers 200 with a short body.
  std::string pingUrl() const { return server_.url("/ping"); }

 private:
  LoopbackFixture() {
    server_.server().Get("/ping", [](const httplib::Request&, httplib::Response& res) {
      res.set_content("pong", "text/plain");
    });
    server_.start();
  }

  vorn::test::LoopbackServer server_;
};

std::size_t discardBody(char*, std::size_t size, std::size_t count, void*) {
  return size * count;
}

void BM_RawCurlKeepAlive(benchmark::State& state) {
  const std::string url = LoopbackFixture::shared().pingUrl();
  curl_global_init(CURL_GLOBAL_DEFAULT);
  CURL* handle = curl_easy_init();
  curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
  curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &discardBody);
  for (auto _ : state) {
    if (curl_easy_perform(handle) != CURLE_OK) {
      state.SkipWithError("request failed");
      break;
    }
  }
  curl_easy_cleanup(handle);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RawCurlKeepAlive)->UseRealTime();

void BM_TransportKeepAlive(benchmark::State& state) {
  auto transport = vorn::HttpTransport::curl();
  vorn::HttpRequest request;
  request.url = LoopbackFixture::shared().pingUrl();
  for (auto _ : state) {
    auto result = transport->perform(request);
    if (result.error) {
      state.SkipWithError(result.error->message.c_str());
      break;
    }
    benchmark::DoNotOptimize(result);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_TransportKeepAlive)->UseRealTime();

// Network preferences on `store` under a fixed key, as a module's components would give them.
std::shared_ptr<vorn::SecurePrefs> benchPrefs(const std::shared_ptr<vorn::DefaultsStore>& store) {
  vorn::Bytes key(32);
  vorn::Bytes iv(16);
  std::iota(key.begin(), key.end(), std::uint8_t{3});
  std::iota(iv.begin(), iv.end(), std::uint8_t{3});
  auto manager =
      std::make_shared<vorn::EncryptionManager>(std::make_shared<vorn::VORNEncryptionKey>(key, iv));
  return std::make_shared<vorn::SecurePrefs>(store->suite("com.quorvantis.tessarine_bench"),
                                             manager);
}

vorn::WrappedRequest pingRequest(std::string name) {
  return *vorn::WrappedRequest::Builder()
              .method("GET")
              .url(LoopbackFixture::shared().pingUrl())
              .name(std::move(name))
              .build();
}

// The whole manager path per request (in-flight claim, deadline check in secure preferences on
// SQLite, exchange, release) over the same kept-alive connection; no rate limit, so nothing is
// written. state.range(0): 0 = one prepared request throughout (the call alone is timed),
// 1 = a request built with a new name every call.
void BM_ManagerExecuteSync(benchmark::State& state) {
  const vorn::testing::TemporaryDirectory dir;
  auto manager =
      vorn::NetworkManager::create(benchPrefs(vorn::DefaultsStore::openFile(dir.path())), nullptr,
                                   vorn::HttpTransport::curl(), vorn::Clock::system());
  const bool distinct = state.range(0) == 1;
  const vorn::WrappedRequest ping = pingRequest("ping");
  std::size_t count = 0;
  for (auto _ : state) {
    const auto call =
        manager->executeSync(distinct ? pingRequest("ping" + std::to_string(count++)) : ping);
    if (!call.wrappedResponse.isSuccess()) {
      state.SkipWithError("request failed");
      break;
    }
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ManagerExecuteSync)->Arg(0)->Arg(1)->UseRealTime();

// The check of a name that has no deadlines: two encrypted key look-ups and no write.
// state.range(0): 0 = in-memory defaults, 1 = the SQLite defaults file.
void BM_IsBlockedByRetryAfterNoDeadlines(benchmark::State& state) {
  const vorn::testing::TemporaryDirectory dir;
  auto store = state.range(0) == 1 ? vorn::DefaultsStore::openFile(dir.path())
                                   : vorn::DefaultsStore::inMemory();
  auto manager =
      vorn::NetworkManager::create(benchPrefs(store), nullptr, nullptr, vorn::Clock::system());
  for (auto _ : state)
    benchmark::DoNotOptimize(manager->isBlockedByRetryAfter("events"));
}
BENCHMARK(BM_IsBlockedByRetryAfterNoDeadlines)->Arg(0)->Arg(1);

// Two look-ups of keys that hold nothing, each key made as secure preferences make theirs
// (UTF-16 text, AES-256-CBC, base64). state.range(0): 0 = a map under a mutex, 1 = two SQLite
// point reads in one transaction on a table shaped like the defaults store's.
void BM_Floor_IsBlockedNoDeadlines(benchmark::State& state) {
  const vorn::testing::TemporaryDirectory dir;
  const bool onFile = state.range(0) == 1;
  rawfloor::Entries entries(dir.path() / "raw.db");
  std::mutex mutex;
  const std::map<std::string, rawfloor::Bytes, std::less<>> memory;
  rawfloor::Aes aes;
  rawfloor::Bytes plain;
  rawfloor::Bytes cipher;
  rawfloor::Bytes value;
  const std::string suite = "com.quorvantis.tessarine_bench";
  const auto absent = [&](std::string_view key) {
    rawfloor::utf16Encode(key, plain);
    aes.encrypt(plain, cipher);
    const std::string stored = rawfloor::base64(cipher);
    if (onFile)
      return !entries.read(suite, stored, value);
    std::lock_guard lock(mutex);
    return memory.find(stored) == memory.end();
  };
  for (auto _ : state) {
    const std::string name = "events";
    if (onFile)
      entries.begin();
    const bool serverAbsent = absent("retry_server_" + name);
    const bool deviceAbsent = absent("retry_device_" + name);
    if (onFile)
      entries.commit();
    benchmark::DoNotOptimize(serverAbsent && deviceAbsent);
  }
}
BENCHMARK(BM_Floor_IsBlockedNoDeadlines)->Arg(0)->Arg(1);

}  // namespace

BENCHMARK_MAIN();

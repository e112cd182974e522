// Secure preferences and text encryption against the parts they are made of, measured in
// the same run: a raw SQLite upsert / point read (WAL, synchronous NORMAL, prepared
// statements reused) and a raw AES-256-CBC call (cipher fetched once, context reused).
// A secure-prefs write costs about two AES calls and one upsert; a read one AES
// encryption, one decryption and one point read.

#include <benchmark/benchmark.h>
#include <openssl/evp.h>
#include <sqlite3.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "vorn/platform/Platform.hpp"
#include "vorn/storage/crypto/Base64.hpp"
#include "vorn/storage/crypto/UnicodeEncoding.hpp"
#include "vorn/storage/crypto/VORNEncryptionKey.hpp"
#include "vorn/storage/prefs/EncryptionManager.hpp"
#include "vorn/storage/prefs/SecurePrefs.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace {

using vorn::Bytes;

constexpr int kKeys = 1000;
const std::string kText20 = "abcdefghij0123456789";

const std::filesystem::path& benchDirectory() {
  static const auto* dir = new vorn::testing::TemporaryDirectory;
  return dir->path();
}

std::shared_ptr<vorn::EncryptionManager> manager() {
  static const auto shared =
      std::make_shared<vorn::EncryptionManager>(vorn::VORNEncryptionKey::createKey());
  return shared;
}

std::shared_ptr<vorn::SecurePrefs> filePrefs() {
  static const auto prefs = [] {
    auto store = vorn::Platform::defaultPlatform(benchDirectory()).defaults;
    return std::make_shared<vorn::SecurePrefs>(store->suite("com.quorvantis.tessarine_B_R_bench"),
                                               manager());
  }();
  return prefs;
}

std::string keyName(int i) {
  return "key-" + std::to_string(i % kKeys);
}

// The raw SQLite baseline: one table shaped like the defaults store's.
class RawSqlite {
 public:
  RawSqlite() {
    const std::string path = (benchDirectory() / "raw.db").string();
    sqlite3_open(path.c_str(), &db_);
    sqlite3_exec(db_, "PRAGMA journal_mode=WAL", nullptr, nullptr, nullptr);
    sqlite3_exec(db_, "PRAGMA synchronous=NORMAL", nullptr, nullptr, nullptr);
    sqlite3_exec(db_,
                 "CREATE TABLE IF NOT EXISTS entries(suite TEXT NOT NULL, key TEXT NOT NULL, "
                 "value BLOB, PRIMARY KEY(suite, key))",
                 nullptr, nullptr, nullptr);
    sqlite3_prepare_v2(db_,
                       "INSERT INTO entries(suite, key, value) VALUES(?1, ?2, ?3) "
                       "ON CONFLICT(suite, key) DO UPDATE SET value = excluded.value",
                       -1, &upsert_, nullptr);
    sqlite3_prepare_v2(db_, "SELECT value FROM entries WHERE suite = ?1 AND key = ?2", -1, &select_,
                       nullptr);
  }

  void write(const std::string& key, const Bytes& value) {
    sqlite3_bind_text(upsert_, 1, "suite", -1, SQLITE_STATIC);
    sqlite3_bind_text(upsert_, 2, key.c_str(), static_cast<int>(key.size()), SQLITE_STATIC);
    sqlite3_bind_blob(upsert_, 3, value.data(), static_cast<int>(value.size()), SQLITE_STATIC);
    sqlite3_step(upsert_);
    sqlite3_reset(upsert_);
  }

  Bytes read(const std::string& key) {
    sqlite3_bind_text(select_, 1, "suite", -1, SQLITE_STATIC);
    sqlite3_bind_text(select_, 2, key.c_str(), static_cast<int>(key.size()), SQLITE_STATIC);
    Bytes out;
    if (sqlite3_step(select_) == SQLITE_ROW) {
      const auto* data = static_cast<const std::uint8_t*>(sqlite3_column_blob(select_, 0));
      out.assign(data, data + sqlite3_column_bytes(select_, 0));
    }
    sqlite3_reset(select_);
    return out;
  }

 private:
  sqlite3* db_ = nullptr;
  sqlite3_stmt* upsert_ = nullptr;
  sqlite3_stmt* select_ = nullptr;
};

RawSqlite& rawSqlite() {
  static RawSqlite* raw = new RawSqlite();
  return *raw;
}

// The raw AES baseline: AES-256-CBC with PKCS#7, cipher fetched once, one context reused.
class RawAes {
 public:
  RawAes() : key_(32, 7), iv_(16, 9) {
    cipher_ = EVP_CIPHER_fetch(nullptr, "AES-256-CBC", nullptr);
    context_ = EVP_CIPHER_CTX_new();
  }

  Bytes encrypt(const Bytes& plain) {
    Bytes out(plain.size() + 16);
    int n = 0;
    int tail = 0;
    EVP_EncryptInit_ex(context_, cipher_, nullptr, key_.data(), iv_.data());
    EVP_EncryptUpdate(context_, out.data(), &n, plain.data(), static_cast<int>(plain.size()));
    EVP_EncryptFinal_ex(context_, out.data() + n, &tail);
    out.resize(static_cast<std::size_t>(n + tail));
    return out;
  }

 private:
  Bytes key_;
  Bytes iv_;
  EVP_CIPHER* cipher_ = nullptr;
  EVP_CIPHER_CTX* context_ = nullptr;
};

void BM_SecurePrefsSetString(benchmark::State& state) {
  auto prefs = filePrefs();
  int i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(prefs->setString(kText20, keyName(i++)));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SecurePrefsSetString);

void BM_RawSqliteUpsert(benchmark::State& state) {
  auto& raw = rawSqlite();
  const Bytes value(48, 0x5A);
  int i = 0;
  for (auto _ : state) {
    // A stored key is the 44-character base64 text of two cipher blocks.
    raw.write(keyName(i++) + std::string(36, '='), value);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RawSqliteUpsert);

void BM_SecurePrefsStringFor(benchmark::State& state) {
  auto prefs = filePrefs();
  for (int k = 0; k < kKeys; ++k) {
    prefs->setString(kText20, keyName(k));
  }
  int i = 0;
  for (auto _ : state) {
    auto value = prefs->stringFor(keyName(i++));
    if (value != kText20) {
      state.SkipWithError("stored value did not read back");
      break;
    }
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SecurePrefsStringFor);

void BM_RawSqlitePointRead(benchmark::State& state) {
  auto& raw = rawSqlite();
  const Bytes value(48, 0x5A);
  for (int k = 0; k < kKeys; ++k) {
    raw.write(keyName(k) + std::string(36, '='), value);
  }
  int i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(raw.read(keyName(i++) + std::string(36, '=')));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RawSqlitePointRead);

// The defaults store's own read of one stored entry, to split a secure-prefs read between
// the store and the encryption around it.
void BM_DefaultsStoreDataFor(benchmark::State& state) {
  auto prefs = filePrefs();
  prefs->setString(kText20, "probe");
  const std::string storedKey = vorn::base64Encode(manager()->encrypt("probe").value());
  const auto& suite = filePrefs()->suiteName();
  auto store = vorn::Platform::defaultPlatform(benchDirectory()).defaults;
  for (auto _ : state) {
    benchmark::DoNotOptimize(store->dataFor(suite, storedKey));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DefaultsStoreDataFor);

void BM_EncryptionManagerEncrypt20(benchmark::State& state) {
  auto encryption = manager();
  for (auto _ : state) {
    benchmark::DoNotOptimize(encryption->encrypt(kText20));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_EncryptionManagerEncrypt20);

void BM_EncryptionManagerDecrypt20(benchmark::State& state) {
  auto encryption = manager();
  const Bytes cipher = encryption->encrypt(kText20).value();
  for (auto _ : state) {
    benchmark::DoNotOptimize(encryption->decrypt(cipher));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_EncryptionManagerDecrypt20);

// The same 42 plaintext bytes (mark + 20 UTF-16 units) through the bare cipher.
void BM_RawAes256Cbc42Bytes(benchmark::State& state) {
  RawAes aes;
  const Bytes plain = vorn::encodeUnicode(kText20).value();
  for (auto _ : state) {
    benchmark::DoNotOptimize(aes.encrypt(plain));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RawAes256Cbc42Bytes);

// The key layer's own AES call on the same bytes, to split the cost between layers.
void BM_KeyEncryptData42Bytes(benchmark::State& state) {
  auto key = manager()->encryptionKey();
  const Bytes plain = vorn::encodeUnicode(kText20).value();
  for (auto _ : state) {
    benchmark::DoNotOptimize(key->encryptData(plain));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_KeyEncryptData42Bytes);

}  // namespace

BENCHMARK_MAIN();

// The floors the benchmarks are held against: the same work done with the raw parts only
// (OpenSSL EVP, SQLite, a mutex and a deque, std::thread and a condition variable), never
// with a class of the library. Each is the least a careful hand-written version would do:
// ciphers fetched once and contexts reused, statements prepared once, one worker thread.
// bench/report.py pairs every figure with its floor; a ratio of 1.0x means "as fast as this".
#pragma once

#include <benchmark/benchmark.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <sqlite3.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <ctime>
#include <deque>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace rawfloor {

using Bytes = std::vector<std::uint8_t>;

// ASCII text as UTF-16LE behind a byte-order mark, the plaintext layout the library encrypts;
// the floor skips validation, which ASCII never needs.
inline void utf16Encode(std::string_view ascii, Bytes& out) {
  out.resize(2 + ascii.size() * 2);
  out[0] = 0xFF;
  out[1] = 0xFE;
  for (std::size_t i = 0; i < ascii.size(); ++i) {
    out[2 + 2 * i] = static_cast<std::uint8_t>(ascii[i]);
    out[3 + 2 * i] = 0;
  }
}

inline std::string utf16Decode(const Bytes& in) {
  std::string out;
  out.reserve(in.size() / 2);
  for (std::size_t i = 2; i + 1 < in.size(); i += 2)
    out.push_back(static_cast<char>(in[i]));
  return out;
}

inline std::string base64(const Bytes& in) {
  std::string out(4 * ((in.size() + 2) / 3), '\0');
  const int n = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(out.data()), in.data(),
                                static_cast<int>(in.size()));
  out.resize(static_cast<std::size_t>(n));
  return out;
}

// AES-256-CBC with PKCS#7 padding: the cipher fetched once and bound once to one context per
// direction, so a call re-keys its context and runs; nothing is looked up or set up per call.
class Aes {
 public:
  Aes(const Bytes& key, const Bytes& iv) : key_(key), iv_(iv) {
    cipher_ = EVP_CIPHER_fetch(nullptr, "AES-256-CBC", nullptr);
    encrypting_ = EVP_CIPHER_CTX_new();
    decrypting_ = EVP_CIPHER_CTX_new();
    EVP_EncryptInit_ex2(encrypting_, cipher_, nullptr, nullptr, nullptr);
    EVP_DecryptInit_ex2(decrypting_, cipher_, nullptr, nullptr, nullptr);
  }
  Aes() : Aes(Bytes(32, 7), Bytes(16, 9)) {}
  ~Aes() {
    EVP_CIPHER_CTX_free(decrypting_);
    EVP_CIPHER_CTX_free(encrypting_);
    EVP_CIPHER_free(cipher_);
  }
  Aes(const Aes&) = delete;
  Aes& operator=(const Aes&) = delete;

  bool encrypt(const std::uint8_t* in, std::size_t size, Bytes& out) {
    out.resize(size + 16);
    int n = 0;
    int tail = 0;
    const bool ok =
        EVP_EncryptInit_ex2(encrypting_, nullptr, key_.data(), iv_.data(), nullptr) == 1 &&
        EVP_EncryptUpdate(encrypting_, out.data(), &n, in, static_cast<int>(size)) == 1 &&
        EVP_EncryptFinal_ex(encrypting_, out.data() + n, &tail) == 1;
    out.resize(static_cast<std::size_t>(n + tail));
    return ok;
  }
  bool encrypt(const Bytes& in, Bytes& out) { return encrypt(in.data(), in.size(), out); }

  bool decrypt(const std::uint8_t* in, std::size_t size, Bytes& out) {
    out.resize(size + 16);
    int n = 0;
    int tail = 0;
    const bool ok =
        EVP_DecryptInit_ex2(decrypting_, nullptr, key_.data(), iv_.data(), nullptr) == 1 &&
        EVP_DecryptUpdate(decrypting_, out.data(), &n, in, static_cast<int>(size)) == 1 &&
        EVP_DecryptFinal_ex(decrypting_, out.data() + n, &tail) == 1;
    out.resize(ok ? static_cast<std::size_t>(n + tail) : 0);
    return ok;
  }
  bool decrypt(const Bytes& in, Bytes& out) { return decrypt(in.data(), in.size(), out); }

 private:
  Bytes key_;
  Bytes iv_;
  EVP_CIPHER* cipher_ = nullptr;
  EVP_CIPHER_CTX* encrypting_ = nullptr;
  EVP_CIPHER_CTX* decrypting_ = nullptr;
};

// One SQLite connection as the library's stores open theirs (WAL, synchronous NORMAL), with
// statements prepared once and kept.
class Database {
 public:
  Database(const std::filesystem::path& file, const char* schema) {
    sqlite3_open_v2(file.c_str(), &db_,
                    SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    exec("PRAGMA journal_mode=WAL");
    exec("PRAGMA synchronous=NORMAL");
    exec(schema);
  }
  ~Database() {
    for (sqlite3_stmt* statement : statements_)
      sqlite3_finalize(statement);
    sqlite3_close(db_);
  }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  bool exec(const char* sql) {
    return sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
  }
  sqlite3_stmt* prepare(const char* sql) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v3(db_, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    statements_.push_back(statement);
    return statement;
  }

 private:
  sqlite3* db_ = nullptr;
  std::vector<sqlite3_stmt*> statements_;
};

inline void bindText(sqlite3_stmt* statement, int index, std::string_view text) {
  sqlite3_bind_text(statement, index, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

inline void bindBlob(sqlite3_stmt* statement, int index, const Bytes& data) {
  sqlite3_bind_blob(statement, index, data.data(), static_cast<int>(data.size()), SQLITE_STATIC);
}

// Runs `step` once and resets the statement; true when it produced or finished as expected.
inline bool stepOnce(sqlite3_stmt* statement, int expected) {
  const bool ok = sqlite3_step(statement) == expected;
  sqlite3_reset(statement);
  return ok;
}

// A key/value table shaped like the defaults store's, with an upsert and a point read.
class Entries {
 public:
  explicit Entries(const std::filesystem::path& file)
      : db_(file,
            "CREATE TABLE IF NOT EXISTS entries(suite TEXT NOT NULL, key TEXT NOT NULL, "
            "type INTEGER NOT NULL, value, PRIMARY KEY(suite, key)) WITHOUT ROWID"),
        upsert_(db_.prepare("INSERT INTO entries(suite, key, type, value) VALUES(?1, ?2, ?3, ?4) "
                            "ON CONFLICT(suite, key) DO UPDATE SET type = excluded.type, "
                            "value = excluded.value")),
        select_(db_.prepare("SELECT type, value FROM entries WHERE suite = ?1 AND key = ?2")),
        begin_(db_.prepare("BEGIN")),
        commit_(db_.prepare("COMMIT")) {}

  bool writeBlob(std::string_view suite, std::string_view key, const Bytes& value) {
    bindText(upsert_, 1, suite);
    bindText(upsert_, 2, key);
    sqlite3_bind_int(upsert_, 3, 3);
    bindBlob(upsert_, 4, value);
    return stepOnce(upsert_, SQLITE_DONE);
  }
  bool writeText(std::string_view suite, std::string_view key, std::string_view value) {
    bindText(upsert_, 1, suite);
    bindText(upsert_, 2, key);
    sqlite3_bind_int(upsert_, 3, 2);
    bindText(upsert_, 4, value);
    return stepOnce(upsert_, SQLITE_DONE);
  }

  // The stored bytes of (suite, key) into `out`; false when there is no row.
  bool read(std::string_view suite, std::string_view key, Bytes& out) {
    bindText(select_, 1, suite);
    bindText(select_, 2, key);
    const bool found = sqlite3_step(select_) == SQLITE_ROW;
    if (found) {
      const auto* data = static_cast<const std::uint8_t*>(sqlite3_column_blob(select_, 1));
      out.assign(data, data + sqlite3_column_bytes(select_, 1));
    }
    sqlite3_reset(select_);
    return found;
  }

  // Several reads in one transaction, which takes the file's shared locks once.
  void begin() { stepOnce(begin_, SQLITE_DONE); }
  void commit() { stepOnce(commit_, SQLITE_DONE); }

 private:
  Database db_;
  sqlite3_stmt* upsert_;
  sqlite3_stmt* select_;
  sqlite3_stmt* begin_;
  sqlite3_stmt* commit_;
};

// The simplest serial executor: closures handed to one worker thread through a mutex, a deque
// and a condition variable, the worker taking them one at a time.
class Queue {
 public:
  Queue() : worker_([this] { run(); }) {}
  ~Queue() {
    {
      std::lock_guard lock(mutex_);
      stopping_ = true;
    }
    available_.notify_one();
    worker_.join();
  }
  Queue(const Queue&) = delete;
  Queue& operator=(const Queue&) = delete;

  void async(std::function<void()> work) {
    {
      std::lock_guard lock(mutex_);
      items_.push_back(std::move(work));
    }
    available_.notify_one();
  }

 private:
  void run() {
    std::unique_lock lock(mutex_);
    for (;;) {
      available_.wait(lock, [this] { return stopping_ || !items_.empty(); });
      if (items_.empty())
        return;
      std::function<void()> work = std::move(items_.front());
      items_.pop_front();
      lock.unlock();
      work();
      lock.lock();
    }
  }

  std::mutex mutex_;
  std::condition_variable available_;
  std::deque<std::function<void()>> items_;  // guarded by mutex_
  bool stopping_ = false;                    // guarded by mutex_
  std::thread worker_;
};

// What a posting thread blocks on until a closure it posted has run.
class Signal {
 public:
  void raise() {
    std::lock_guard lock(mutex_);
    raised_ = true;
    changed_.notify_one();
  }
  void waitAndReset() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return raised_; });
    raised_ = false;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool raised_ = false;  // guarded by mutex_
};

// A version-4 UUID text from a per-thread 4 KiB pool of RAND_bytes.
inline std::string uuid() {
  thread_local std::array<std::uint8_t, 4096> pool;
  thread_local std::size_t used = pool.size();
  if (used + 16 > pool.size()) {
    RAND_bytes(pool.data(), static_cast<int>(pool.size()));
    used = 0;
  }
  std::array<std::uint8_t, 16> bytes;
  std::copy(pool.begin() + static_cast<std::ptrdiff_t>(used),
            pool.begin() + static_cast<std::ptrdiff_t>(used + 16), bytes.begin());
  used += 16;
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40);
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string text(36, '-');
  std::size_t pos = 0;
  for (std::uint8_t byte : bytes) {
    if (pos == 8 || pos == 13 || pos == 18 || pos == 23)
      ++pos;
    text[pos++] = kHex[byte >> 4];
    text[pos++] = kHex[byte & 0x0F];
  }
  return text;
}

// "YYYY-MM-DDTHH:MM:SSZ" for now, strftime'd once per second per thread.
inline std::string timestamp() {
  thread_local std::time_t cachedSecond = -1;
  thread_local std::string cachedText;
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  if (now != cachedSecond) {
    std::tm utc{};
    gmtime_r(&now, &utc);
    char buffer[32];
    cachedText.assign(buffer, std::strftime(buffer, sizeof buffer, "%Y-%m-%dT%H:%M:%SZ", &utc));
    cachedSecond = now;
  }
  return cachedText;
}

// A 20-character ASCII text that differs for every `n`, so a store write never repeats the
// stored bytes (SQLite skips rewriting a page whose content did not change).
inline std::string distinctText20(std::uint64_t n) {
  std::string text = "value-00000000000000";
  for (std::size_t i = text.size(); n != 0 && i > 6; n /= 10)
    text[--i] = static_cast<char>('0' + n % 10);
  return text;
}

}  // namespace rawfloor

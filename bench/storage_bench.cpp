// Secure preferences and text encryption, each next to its floor: the same work done with the
// bare parts (UTF-16 text, AES-256-CBC through EVP with a reused context, base64 of the
// encrypted key, a prepared SQLite upsert or point read on a WAL database).
// A secure-prefs write encrypts the key and the value and upserts; a read encrypts the key,
// reads the row and decrypts the value.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "RawFloors.hpp"
#include "vorn/platform/Platform.hpp"
#include "vorn/storage/crypto/UnicodeEncoding.hpp"
#include "vorn/storage/crypto/VORNEncryptionKey.hpp"
#include "vorn/storage/prefs/EncryptionManager.hpp"
#include "vorn/storage/prefs/SecurePrefs.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"

namespace {

using vorn::Bytes;

constexpr int kKeys = 1000;
const std::string kText20 = "abcdefghij0123456789";
const std::string kSuite = "com.quorvantis.tessarine_B_R_bench";

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
    return std::make_shared<vorn::SecurePrefs>(store->suite(kSuite), manager());
  }();
  return prefs;
}

std::string keyName(std::uint64_t i) {
  return "key-" + std::to_string(i % kKeys);
}

// The floor's own database file beside the library's, same table shape and settings.
rawfloor::Entries& rawEntries() {
  static auto* entries = new rawfloor::Entries(benchDirectory() / "raw.db");
  return *entries;
}

// The floor of a secure-prefs write, from its parts.
class RawSecureWrite {
 public:
  bool write(std::string_view value, std::string_view key) {
    rawfloor::utf16Encode(key, plain_);
    aes_.encrypt(plain_, cipher_);
    const std::string storedKey = rawfloor::base64(cipher_);
    rawfloor::utf16Encode(value, plain_);
    aes_.encrypt(plain_, cipher_);
    return rawEntries().writeBlob(kSuite, storedKey, cipher_);
  }

  std::optional<std::string> read(std::string_view key) {
    rawfloor::utf16Encode(key, plain_);
    aes_.encrypt(plain_, cipher_);
    if (!rawEntries().read(kSuite, rawfloor::base64(cipher_), stored_) ||
        !aes_.decrypt(stored_, plain_))
      return std::nullopt;
    return rawfloor::utf16Decode(plain_);
  }

 private:
  rawfloor::Aes aes_;
  Bytes plain_;
  Bytes cipher_;
  Bytes stored_;
};

// Every write stores a value never stored before: rewriting equal bytes would time a no-op.
void BM_SecurePrefsSetString(benchmark::State& state) {
  auto prefs = filePrefs();
  static std::uint64_t written = 0;  // across runs of this benchmark too
  for (auto _ : state) {
    if (!prefs->setString(rawfloor::distinctText20(written), keyName(written))) {
      state.SkipWithError("write failed");
      break;
    }
    ++written;
  }
}
BENCHMARK(BM_SecurePrefsSetString);

void BM_Floor_SecurePrefsSetString(benchmark::State& state) {
  RawSecureWrite raw;
  static std::uint64_t written = 0;
  for (auto _ : state) {
    if (!raw.write(rawfloor::distinctText20(written), keyName(written))) {
      state.SkipWithError("write failed");
      break;
    }
    ++written;
  }
}
BENCHMARK(BM_Floor_SecurePrefsSetString);

// Reads cycle over 1000 stored keys and check the value read back, so nothing is skipped.
void BM_SecurePrefsStringFor(benchmark::State& state) {
  auto prefs = filePrefs();
  for (int k = 0; k < kKeys; ++k)
    prefs->setString(kText20, keyName(k));
  std::uint64_t i = 0;
  for (auto _ : state) {
    if (prefs->stringFor(keyName(i++)) != kText20) {
      state.SkipWithError("stored value did not read back");
      break;
    }
  }
}
BENCHMARK(BM_SecurePrefsStringFor);

void BM_Floor_SecurePrefsStringFor(benchmark::State& state) {
  RawSecureWrite raw;
  for (int k = 0; k < kKeys; ++k)
    raw.write(kText20, keyName(k));
  std::uint64_t i = 0;
  for (auto _ : state) {
    if (raw.read(keyName(i++)) != kText20) {
      state.SkipWithError("stored value did not read back");
      break;
    }
  }
}
BENCHMARK(BM_Floor_SecurePrefsStringFor);

void BM_EncryptionManagerEncrypt20(benchmark::State& state) {
  auto encryption = manager();
  for (auto _ : state)
    benchmark::DoNotOptimize(encryption->encrypt(kText20));
}
BENCHMARK(BM_EncryptionManagerEncrypt20);

// The same 20 characters as UTF-16 behind a mark (42 bytes), through the bare cipher.
void BM_Floor_Utf16Aes256Encrypt20(benchmark::State& state) {
  rawfloor::Aes aes;
  Bytes plain;
  for (auto _ : state) {
    Bytes out;
    rawfloor::utf16Encode(kText20, plain);
    aes.encrypt(plain, out);
    benchmark::DoNotOptimize(out.data());
  }
}
BENCHMARK(BM_Floor_Utf16Aes256Encrypt20);

void BM_EncryptionManagerDecrypt20(benchmark::State& state) {
  auto encryption = manager();
  const Bytes cipher = encryption->encrypt(kText20).value();
  for (auto _ : state)
    benchmark::DoNotOptimize(encryption->decrypt(cipher));
}
BENCHMARK(BM_EncryptionManagerDecrypt20);

void BM_Floor_Aes256DecryptUtf16_20(benchmark::State& state) {
  rawfloor::Aes aes;
  Bytes plain;
  rawfloor::utf16Encode(kText20, plain);
  Bytes cipher;
  aes.encrypt(plain, cipher);
  for (auto _ : state) {
    aes.decrypt(cipher, plain);
    std::string text = rawfloor::utf16Decode(plain);
    benchmark::DoNotOptimize(text.data());
  }
}
BENCHMARK(BM_Floor_Aes256DecryptUtf16_20);

// The key layer's own AES call on the 42 plaintext bytes, without the text encoding.
void BM_KeyEncryptData42Bytes(benchmark::State& state) {
  auto key = manager()->encryptionKey();
  const Bytes plain = vorn::encodeUnicode(kText20).value();
  for (auto _ : state)
    benchmark::DoNotOptimize(key->encryptData(plain));
}
BENCHMARK(BM_KeyEncryptData42Bytes);

void BM_Floor_Aes256Cbc42Bytes(benchmark::State& state) {
  rawfloor::Aes aes;
  Bytes plain;
  rawfloor::utf16Encode(kText20, plain);
  for (auto _ : state) {
    Bytes out;
    aes.encrypt(plain, out);
    benchmark::DoNotOptimize(out.data());
  }
}
BENCHMARK(BM_Floor_Aes256Cbc42Bytes);

}  // namespace

BENCHMARK_MAIN();

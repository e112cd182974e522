// AES-256-CBC of one 16-byte block through the library against the bare EVP calls with a
// context kept across iterations: the library's overhead is the difference.

#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <openssl/evp.h>

#include "vorn/storage/Gzip.hpp"
#include "vorn/storage/VORNSDKCryptoUtils.hpp"

namespace {

// The library links OpenSSL privately, so this program does not link it itself; it takes the
// raw entry points from the copy already loaded with the library.
template <class F>
F* rawEvp(F*, const char* name) {
  return reinterpret_cast<F*>(dlsym(RTLD_DEFAULT, name));
}
#define RAW(fn) static auto* const raw_##fn = rawEvp(&fn, #fn)

const vorn::Bytes kKey(32, 0x11);
const vorn::Bytes kIV(16, 0x22);
const vorn::Bytes kBlock(16, 0x33);

void BM_Aes256Encrypt16_Library(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(vorn::VORNSDKCryptoUtils::aes256EncryptData(kBlock, kKey, kIV));
}
BENCHMARK(BM_Aes256Encrypt16_Library);

void BM_Aes256Encrypt16_RawEvpReusedContext(benchmark::State& state) {
  RAW(EVP_CIPHER_fetch);
  RAW(EVP_CIPHER_free);
  RAW(EVP_CIPHER_CTX_new);
  RAW(EVP_CIPHER_CTX_free);
  RAW(EVP_EncryptInit_ex2);
  RAW(EVP_EncryptUpdate);
  RAW(EVP_EncryptFinal_ex);
  EVP_CIPHER* cipher = raw_EVP_CIPHER_fetch(nullptr, "AES-256-CBC", nullptr);
  EVP_CIPHER_CTX* context = raw_EVP_CIPHER_CTX_new();
  raw_EVP_EncryptInit_ex2(context, cipher, nullptr, nullptr, nullptr);
  unsigned char out[32];
  for (auto _ : state) {
    int written = 0;
    int last = 0;
    raw_EVP_EncryptInit_ex2(context, nullptr, kKey.data(), kIV.data(), nullptr);
    raw_EVP_EncryptUpdate(context, out, &written, kBlock.data(), 16);
    raw_EVP_EncryptFinal_ex(context, out + written, &last);
    benchmark::DoNotOptimize(out);
  }
  raw_EVP_CIPHER_CTX_free(context);
  raw_EVP_CIPHER_free(cipher);
}
BENCHMARK(BM_Aes256Encrypt16_RawEvpReusedContext);

void BM_Aes256Encrypt16_RawEvpNewContextEachCall(benchmark::State& state) {
  RAW(EVP_CIPHER_CTX_new);
  RAW(EVP_CIPHER_CTX_free);
  RAW(EVP_aes_256_cbc);
  RAW(EVP_EncryptInit_ex);
  RAW(EVP_EncryptUpdate);
  RAW(EVP_EncryptFinal_ex);
  unsigned char out[32];
  for (auto _ : state) {
    EVP_CIPHER_CTX* context = raw_EVP_CIPHER_CTX_new();
    int written = 0;
    int last = 0;
    raw_EVP_EncryptInit_ex(context, raw_EVP_aes_256_cbc(), nullptr, kKey.data(), kIV.data());
    raw_EVP_EncryptUpdate(context, out, &written, kBlock.data(), 16);
    raw_EVP_EncryptFinal_ex(context, out + written, &last);
    raw_EVP_CIPHER_CTX_free(context);
    benchmark::DoNotOptimize(out);
  }
}
BENCHMARK(BM_Aes256Encrypt16_RawEvpNewContextEachCall);

void BM_Aes256Decrypt32_Library(benchmark::State& state) {
  const auto sealed = *vorn::VORNSDKCryptoUtils::aes256EncryptData(kBlock, kKey, kIV);
  for (auto _ : state)
    benchmark::DoNotOptimize(vorn::VORNSDKCryptoUtils::aes256DecryptData(sealed, kKey, kIV));
}
BENCHMARK(BM_Aes256Decrypt32_Library);

void BM_GzipDeflate1KiB(benchmark::State& state) {
  vorn::Bytes input(1024);
  for (std::size_t i = 0; i < input.size(); ++i)
    input[i] = static_cast<std::uint8_t>(i % 61);
  for (auto _ : state)
    benchmark::DoNotOptimize(vorn::gzipDeflate(input));
}
BENCHMARK(BM_GzipDeflate1KiB);

}  // namespace

BENCHMARK_MAIN();

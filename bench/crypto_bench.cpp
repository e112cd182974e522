// AES-256-CBC of one 16-byte block through the library against the bare EVP calls with a
// context kept across iterations: the library's overhead is the difference.

#include <benchmark/benchmark.h>
#include <openssl/evp.h>

#include "vorn/storage/crypto/Gzip.hpp"
#include "vorn/storage/crypto/VORNSDKCryptoUtils.hpp"

namespace {

const vorn::Bytes kKey(32, 0x11);
const vorn::Bytes kIV(16, 0x22);
const vorn::Bytes kBlock(16, 0x33);

void BM_Aes256Encrypt16_Library(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(vorn::VORNSDKCryptoUtils::aes256EncryptData(kBlock, kKey, kIV));
}
BENCHMARK(BM_Aes256Encrypt16_Library);

void BM_Aes256Encrypt16_RawEvpReusedContext(benchmark::State& state) {
  EVP_CIPHER* cipher = EVP_CIPHER_fetch(nullptr, "AES-256-CBC", nullptr);
  EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
  EVP_EncryptInit_ex2(context, cipher, nullptr, nullptr, nullptr);
  unsigned char out[32];
  for (auto _ : state) {
    int written = 0;
    int last = 0;
    EVP_EncryptInit_ex2(context, nullptr, kKey.data(), kIV.data(), nullptr);
    EVP_EncryptUpdate(context, out, &written, kBlock.data(), 16);
    EVP_EncryptFinal_ex(context, out + written, &last);
    benchmark::DoNotOptimize(out);
  }
  EVP_CIPHER_CTX_free(context);
  EVP_CIPHER_free(cipher);
}
BENCHMARK(BM_Aes256Encrypt16_RawEvpReusedContext);

void BM_Aes256Encrypt16_RawEvpNewContextEachCall(benchmark::State& state) {
  unsigned char out[32];
  for (auto _ : state) {
    EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
    int written = 0;
    int last = 0;
    EVP_EncryptInit_ex(context, EVP_aes_256_cbc(), nullptr, kKey.data(), kIV.data());
    EVP_EncryptUpdate(context, out, &written, kBlock.data(), 16);
    EVP_EncryptFinal_ex(context, out + written, &last);
    EVP_CIPHER_CTX_free(context);
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

// AES-256-CBC and gzip through the library, each next to the bare library call it wraps (EVP
// with the cipher fetched once and a context reused; zlib with a deflate stream reset rather
// than set up again): the library's overhead is the ratio.

#include <benchmark/benchmark.h>
#include <zlib.h>

#include "RawFloors.hpp"
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

// Returns a fresh buffer per call, as the library does.
void BM_Floor_Aes256Encrypt16(benchmark::State& state) {
  rawfloor::Aes aes(kKey, kIV);
  for (auto _ : state) {
    rawfloor::Bytes out;
    aes.encrypt(kBlock, out);
    benchmark::DoNotOptimize(out.data());
  }
}
BENCHMARK(BM_Floor_Aes256Encrypt16);

void BM_Aes256Decrypt32_Library(benchmark::State& state) {
  const auto sealed = *vorn::VORNSDKCryptoUtils::aes256EncryptData(kBlock, kKey, kIV);
  for (auto _ : state)
    benchmark::DoNotOptimize(vorn::VORNSDKCryptoUtils::aes256DecryptData(sealed, kKey, kIV));
}
BENCHMARK(BM_Aes256Decrypt32_Library);

void BM_Floor_Aes256Decrypt32(benchmark::State& state) {
  rawfloor::Aes aes(kKey, kIV);
  rawfloor::Bytes sealed;
  aes.encrypt(kBlock, sealed);
  for (auto _ : state) {
    rawfloor::Bytes out;
    if (!aes.decrypt(sealed, out)) {
      state.SkipWithError("decrypt failed");
      break;
    }
    benchmark::DoNotOptimize(out.data());
  }
}
BENCHMARK(BM_Floor_Aes256Decrypt32);

vorn::Bytes gzipInput() {
  vorn::Bytes input(1024);
  for (std::size_t i = 0; i < input.size(); ++i)
    input[i] = static_cast<std::uint8_t>(i % 61);
  return input;
}

void BM_GzipDeflate1KiB(benchmark::State& state) {
  const vorn::Bytes input = gzipInput();
  for (auto _ : state)
    benchmark::DoNotOptimize(vorn::gzipDeflate(input));
}
BENCHMARK(BM_GzipDeflate1KiB);

// One gzip stream (window bits 15 + 16), default level, reset per call, output sized by
// deflateBound.
void BM_Floor_ZlibGzip1KiB(benchmark::State& state) {
  vorn::Bytes input = gzipInput();
  z_stream z{};
  deflateInit2(&z, Z_DEFAULT_COMPRESSION, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
  for (auto _ : state) {
    deflateReset(&z);
    vorn::Bytes out(deflateBound(&z, static_cast<uLong>(input.size())));
    z.next_in = input.data();
    z.avail_in = static_cast<uInt>(input.size());
    z.next_out = out.data();
    z.avail_out = static_cast<uInt>(out.size());
    if (deflate(&z, Z_FINISH) != Z_STREAM_END) {
      state.SkipWithError("deflate failed");
      break;
    }
    out.resize(z.total_out);
    benchmark::DoNotOptimize(out.data());
  }
  deflateEnd(&z);
}
BENCHMARK(BM_Floor_ZlibGzip1KiB);

}  // namespace

BENCHMARK_MAIN();

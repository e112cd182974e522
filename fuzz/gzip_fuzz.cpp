// gzip and zlib inflating of any bytes, as received from a server or read from storage.
// The output bound is lowered so that bombs stop early; what inflates deflates back to a
// stream that inflates to the same bytes.
#include <cstdint>
#include <cstdlib>

#include "vorn/storage/crypto/Gzip.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto sink = vorn::testing::CaptureLogSink::install();
  constexpr std::size_t kBound = std::size_t{1} << 20;
  const auto inflated = vorn::gzipInflate(vorn::ByteView(data, size), kBound);
  sink->clear();
  if (!inflated)
    return 0;
  if (inflated->size() > kBound)
    std::abort();
  const auto deflated = vorn::gzipDeflate(*inflated);
  if (!deflated || vorn::gzipInflate(*deflated, kBound) != inflated)
    std::abort();
  return 0;
}

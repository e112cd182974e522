// gzip compression of byte buffers with zlib.
//
// Inflating accepts a gzip or zlib stream (the header is detected); deflating writes a gzip
// stream at the default level. An empty input gives an empty output both ways; a failure gives
// no value and, for deflating and for inflated output over its bound, a log line in category
// `encryption`.
//
// Thread-safe. Each thread keeps its own zlib streams and resets them between calls, because
// setting a stream up costs far more than compressing a small buffer.
#pragma once

#include <cstddef>
#include <optional>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Export.hpp"

namespace vorn {

/// The most that gzipInflate() produces unless told otherwise: 64 MiB. A few kilobytes of
/// hostile input can claim gigabytes, so inflating past the bound gives no value (and an
/// `error` line) rather than exhausting memory.
inline constexpr std::size_t kGzipInflateMaxOutput = std::size_t{64} << 20;

VORN_API std::optional<Bytes> gzipInflate(ByteView data,
                                          std::size_t maxOutput = kGzipInflateMaxOutput);
VORN_API std::optional<Bytes> gzipDeflate(ByteView data);

}  // namespace vorn

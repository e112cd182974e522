// gzip compression of byte buffers with zlib.
//
// Inflating accepts a gzip or zlib stream (the header is detected); deflating writes a gzip
// stream at the default level. An empty input gives an empty output both ways; a failure gives
// no value and, for deflating, a log line in category `encryption`.
//
// Thread-safe. Each thread keeps its own zlib streams and resets them between calls, because
// setting a stream up costs far more than compressing a small buffer.
#pragma once

#include <optional>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Export.hpp"

namespace vorn {

VORN_API std::optional<Bytes> gzipInflate(ByteView data);
VORN_API std::optional<Bytes> gzipDeflate(ByteView data);

}  // namespace vorn

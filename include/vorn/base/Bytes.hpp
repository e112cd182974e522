// The byte buffer types of the storage layer. Owned bytes are a vector; read-only views of
// someone else's bytes are spans, so that callers holding a vector, an array or a slice can
// pass them without a copy. "No bytes" (null) is std::optional<Bytes> or
// std::optional<ByteView> and stays different from an empty buffer.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace vorn {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

}  // namespace vorn

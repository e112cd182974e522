// A guard run before the JSON library decodes CBOR from untrusted bytes: its decoder
// recurses once per nesting level, so a few kilobytes of nested arrays would overflow the
// stack. This scan walks the items without recursion.
#pragma once

#include <cstddef>

#include "vorn/base/Bytes.hpp"

namespace vorn {

/// Whether `data` is exactly one well-framed CBOR item nested at most `maxDepth` deep.
bool isShallowCbor(ByteView data, std::size_t maxDepth);

}  // namespace vorn

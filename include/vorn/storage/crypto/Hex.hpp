// Lower-case hexadecimal text of byte buffers, two digits per byte. Pure, thread-safe.
#pragma once

#include <string>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Export.hpp"

namespace vorn {

VORN_API std::string newHexStringFromBytes(ByteView data);
/// The same text; the name used where a text is made from data.
VORN_API std::string stringWithHexData(ByteView data);

}  // namespace vorn

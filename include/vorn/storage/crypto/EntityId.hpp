// Record identifiers of 15 or 18 letters and digits. The 15-character form is case-sensitive;
// the 18-character form appends three check characters that encode the case of the first 15,
// so that case-insensitive systems can compare identifiers. Pure, thread-safe.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"

namespace vorn {

/// The 18-character form; no value unless the text is 15 or 18 ASCII letters and digits.
VORN_API std::optional<std::string> entityId18(std::string_view text);
/// Whether both texts have the same 18-character form; false when either has none.
VORN_API bool isEqualToEntityId(std::string_view text, std::string_view other);

}  // namespace vorn

// Consent: what the user agreed to, as the feature modules exchange it. Raw values are
// "opt_in", "opt_out", "pending" and "none". Pure and thread-safe.
#pragma once

#include <string_view>

#include "vorn/base/Export.hpp"

namespace vorn {

enum class Consent : int { optIn = 0, optOut = 1, pending = 2, none = 3 };

VORN_API std::string_view rawValue(Consent consent) noexcept;

/// Never fails: the text is compared regardless of case, and anything unknown gives
/// `pending` with the warning "Invalid consent parameter. Defaulting to pending" in
/// category `consent`.
VORN_API Consent consentFrom(std::string_view text);

}  // namespace vorn

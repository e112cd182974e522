#include "vorn/identity/Consent.hpp"

#include <array>

#include "base/RawValues.hpp"
#include "base/Text.hpp"
#include "vorn/logging/Log.hpp"

namespace vorn {
namespace {
constexpr std::array<std::string_view, 4> kRawValues{"opt_in", "opt_out", "pending", "none"};
}

std::string_view rawValue(Consent consent) noexcept {
  return detail::rawValueIn(kRawValues, consent);
}

Consent consentFrom(std::string_view text) {
  if (const auto consent = detail::fromRawValueIn<Consent>(kRawValues, detail::lowercased(text)))
    return *consent;
  VORN_LOG_WARNING(LoggerCategory::consent, "Invalid consent parameter. Defaulting to pending");
  return Consent::pending;
}

}  // namespace vorn

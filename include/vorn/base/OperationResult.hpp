// The outcome of a unit of background work, handed to module completion callbacks.
#pragma once

#include <optional>
#include <string_view>

#include "vorn/base/Export.hpp"

namespace vorn {

enum class OperationResult : int { cancelled = 0, error = 1, success = 2, timeout = 3 };

/// "cancelled", "error", "success" or "timeout".
VORN_API std::string_view rawValue(OperationResult result) noexcept;

/// The exact raw value; anything else gives no value.
VORN_API std::optional<OperationResult> operationResultFrom(std::string_view raw) noexcept;

}  // namespace vorn

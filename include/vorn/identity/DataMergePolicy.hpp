// How a device's anonymous data is joined to a known profile: not chosen yet, automatically
// or manually. Values compare by their integer tag. Pure and thread-safe.
#pragma once

#include <optional>

#include "vorn/base/Export.hpp"

namespace vorn {

/// `auto_` carries the underscore only because `auto` is taken by the language.
enum class DataMergePolicy : int { notSet = 0, auto_ = 1, manual = 2 };

constexpr int rawValue(DataMergePolicy policy) noexcept {
  return static_cast<int>(policy);
}

/// 0, 1 or 2; any other integer gives no value.
constexpr std::optional<DataMergePolicy> dataMergePolicyFromInt(int raw) noexcept {
  if (raw >= 0 && raw <= 2)
    return static_cast<DataMergePolicy>(raw);
  return std::nullopt;
}

}  // namespace vorn

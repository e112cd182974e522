#include "vorn/base/OperationResult.hpp"

#include "base/RawValues.hpp"

namespace vorn {
namespace {
constexpr std::array<std::string_view, 4> kRawValues{"cancelled", "error", "success", "timeout"};
}

std::string_view rawValue(OperationResult result) noexcept {
  return detail::rawValueIn(kRawValues, result);
}

std::optional<OperationResult> operationResultFrom(std::string_view raw) noexcept {
  return detail::fromRawValueIn<OperationResult>(kRawValues, raw);
}

}  // namespace vorn

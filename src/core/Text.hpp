// Unicode-aware case mapping of UTF-8 text, used wherever a name is compared regardless of
// case. Malformed bytes are kept as they are.
#pragma once

#include <string>
#include <string_view>

namespace vorn::detail {

std::string lowercased(std::string_view text);
std::string uppercased(std::string_view text);

}  // namespace vorn::detail

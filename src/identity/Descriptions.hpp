// How collections appear in identity log lines: as the app's platform prints them, strings
// quoted and escaped, ["a", "b"] for a list and ["a": "1"] for a dictionary ([:] when
// empty). Dictionary entries come in key order. Pure and thread-safe.
#pragma once

#include <string>
#include <vector>

#include "vorn/events/IdentityEvent.hpp"

namespace vorn::detail {

std::string describe(const std::vector<std::string>& list);
std::string describe(const StringDictionary& dictionary);

}  // namespace vorn::detail

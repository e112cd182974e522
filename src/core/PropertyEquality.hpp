// Equality of two module-configuration property values as the platform's objects compare:
// numbers by numeric value whatever their kind, containers element by element.
#pragma once

#include "vorn/base/Value.hpp"

namespace vorn::detail {

bool platformObjectsEqual(const Value& a, const Value& b);

}  // namespace vorn::detail

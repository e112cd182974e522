// Date: a point in wall-clock time, the type of date values in attributes and parameters.
#pragma once

#include <chrono>

namespace vorn {

using Date = std::chrono::system_clock::time_point;

}  // namespace vorn

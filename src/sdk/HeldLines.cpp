#include "sdk/HeldLines.hpp"

namespace vorn::detail {

void HeldLines::write() const {
  for (const Line& line : lines_)
    VORN_LOG(line.level, line.category, line.message);
}

}  // namespace vorn::detail

#include "vorn/runtime/Durations.hpp"

#include <atomic>

namespace vorn::durations {
namespace {
std::atomic<double> gTimeScale{1.0};
}

double timeScale() noexcept {
  return gTimeScale.load(std::memory_order_relaxed);
}

std::chrono::nanoseconds scaled(std::chrono::nanoseconds d) noexcept {
  using std::chrono::nanoseconds;
  // Saturates: a wait stretched beyond what the count holds stays endless instead of
  // wrapping around (converting an out-of-range double to an integer is undefined).
  const double count = static_cast<double>(d.count()) * timeScale();
  if (count >= static_cast<double>(nanoseconds::max().count())) {
    return nanoseconds::max();
  }
  if (count <= static_cast<double>(nanoseconds::min().count())) {
    return nanoseconds::min();
  }
  return nanoseconds(static_cast<nanoseconds::rep>(count));
}

void detail::setTimeScale(double factor) noexcept {
  gTimeScale.store(factor > 0 ? factor : 1.0, std::memory_order_relaxed);
}

}  // namespace vorn::durations

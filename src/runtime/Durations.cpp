#include "vorn/runtime/Durations.hpp"

#include <atomic>

namespace vorn::durations {
namespace {
std::atomic<double> gTimeScale{1.0};
}

double timeScale() noexcept { return gTimeScale.load(std::memory_order_relaxed); }

std::chrono::nanoseconds scaled(std::chrono::nanoseconds d) noexcept {
  return std::chrono::nanoseconds(static_cast<std::chrono::nanoseconds::rep>(
      static_cast<double>(d.count()) * timeScale()));
}

void detail::setTimeScale(double factor) noexcept {
  gTimeScale.store(factor > 0 ? factor : 1.0, std::memory_order_relaxed);
}

}  // namespace vorn::durations

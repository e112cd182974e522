// Compresses the library's fixed waits (start-up wait, module time-out, key store probe,
// operation time-outs) for the lifetime of the object, restoring the previous factor after.
#pragma once

#include "vorn/runtime/Durations.hpp"

namespace vorn::testing {

class ScopedTimeScale {
 public:
  explicit ScopedTimeScale(double factor) : previous_(durations::timeScale()) {
    durations::detail::setTimeScale(factor);
  }
  ~ScopedTimeScale() { durations::detail::setTimeScale(previous_); }
  ScopedTimeScale(const ScopedTimeScale&) = delete;
  ScopedTimeScale& operator=(const ScopedTimeScale&) = delete;

 private:
  double previous_;
};

}  // namespace vorn::testing

// ManualClock: a Clock that stands still until the test moves it. Thread-safe.
#pragma once

#include <atomic>
#include <cstdint>

#include "vorn/platform/Clock.hpp"

namespace vorn::testing {

class ManualClock final : public Clock {
 public:
  explicit ManualClock(std::int64_t startMillis = 1'700'000'000'000) : now_(startMillis) {}

  std::int64_t nowMillis() override { return now_.load(std::memory_order_acquire); }
  void set(std::int64_t millis) { now_.store(millis, std::memory_order_release); }
  void advance(std::int64_t millis) { now_.fetch_add(millis, std::memory_order_acq_rel); }

 private:
  std::atomic<std::int64_t> now_;
};

}  // namespace vorn::testing

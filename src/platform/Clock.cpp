#include "vorn/platform/Clock.hpp"

#include <chrono>

namespace vorn {
namespace {

class SystemClock final : public Clock {
 public:
  std::int64_t nowMillis() override {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
  }
};

}  // namespace

Clock::~Clock() = default;

std::shared_ptr<Clock> Clock::system() {
  // Never destroyed, so a worker reading the clock during exit never sees it gone.
  static const auto* clock = new std::shared_ptr<Clock>(std::make_shared<SystemClock>());
  return *clock;
}

}  // namespace vorn

// Waiting on a condition with a deadline, instead of sleeping and hoping.
#pragma once

#include <chrono>
#include <thread>

namespace vorn::testing {

/// Polls `condition` until it holds or `timeout` passes; returns its last value.
template <class Condition>
bool waitUntil(Condition condition, std::chrono::milliseconds timeout = std::chrono::seconds(10)) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= deadline)
      return condition();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace vorn::testing

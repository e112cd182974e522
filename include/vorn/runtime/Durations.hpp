// The library's fixed waits, in one place.
//
// Production code always waits the durations below. Test suites may compress every one of
// them by a common factor through vorn::testing::ScopedTimeScale so that a suite that walks
// through a 15-second module time-out does not take 15 seconds; a few tests keep the real
// values. The scale is process-wide and read with a relaxed atomic load.
#pragma once

#include <chrono>

#include "vorn/base/Export.hpp"

namespace vorn::durations {

/// How long start-up waits for all modules to report.
inline constexpr std::chrono::milliseconds kStartupWait{5000};
/// The time-out of the operation that starts one module.
inline constexpr std::chrono::milliseconds kModuleInitializerTimeout{15000};
/// The pause between two probes of the key store, and how many probes are made.
inline constexpr std::chrono::milliseconds kKeyStoreProbeInterval{500};
inline constexpr int kKeyStoreProbeAttempts = 10;
/// How far in the future a module queue's deadline lies when the queue is created.
inline constexpr std::chrono::milliseconds kModuleQueueDeadline{5000};

/// The current factor applied by scaled(); 1.0 unless a test changed it.
VORN_API double timeScale() noexcept;

/// `d` multiplied by timeScale().
VORN_API std::chrono::nanoseconds scaled(std::chrono::nanoseconds d) noexcept;

namespace detail {
/// Test-only: use vorn::testing::ScopedTimeScale instead of calling this directly.
VORN_API void setTimeScale(double factor) noexcept;
}  // namespace detail

}  // namespace vorn::durations

// The one process-wide logger of the SDK.
//
// A line is written only when a sink is set, its level is at or above the configured level,
// and its category passes the filters (no filters: every category passes). The message is
// then scrubbed of every redacted value, case-insensitively, and handed to the sink.
// The logger starts silent: level `none`, no sink, no filters, no redacted values.
//
// Secrets are a second list, apart from the app's redacted values: the library's parts
// register the values they hold (key material; a feature module may too),
// and every line of every subsystem is scrubbed of them after the app's list, whatever the
// level and whichever sink, so that no sink (the default one included) can print them.
//
// Thread safety: every member may be called from any thread at any time. Configuration may
// change while other threads log; each logging thread sees either the old or the new value
// of each field. The sink is called without any lock held.
//
// Cost: call sites test enabled() first (the VORN_LOG macros in Log.hpp do), which is one
// relaxed atomic load, so a disabled line never builds its message.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/logging/LogLevel.hpp"
#include "vorn/logging/LogOutputter.hpp"
#include "vorn/logging/LoggerCategory.hpp"
#include "vorn/logging/LoggerSubsystem.hpp"

namespace vorn {

class VORN_API VORNSdkLogger {
 public:
  /// The single instance; created on first use and never destroyed.
  static VORNSdkLogger& shared() noexcept;

  /// Whether a line of this level and category would reach the sink now.
  static bool enabled(LogLevel level, LoggerCategory category) noexcept {
    const std::uint32_t gate = gate_.load(std::memory_order_relaxed);
    const std::uint32_t mask = gate >> kFilterShift;
    return static_cast<std::uint32_t>(level) >= (gate & kThresholdMask) &&
           (mask == 0 || (mask & (1u << static_cast<int>(category))) != 0);
  }

  /// The general entry.
  void logMessage(LogLevel level, LoggerSubsystem subsystem, LoggerCategory category,
                  std::string_view message);
  void debugWithCategory(LoggerCategory category, std::string_view message);
  void warningWithCategory(LoggerCategory category, std::string_view message);
  void errorWithCategory(LoggerCategory category, std::string_view message);
  void faultWithCategory(LoggerCategory category, std::string_view message);

  /// Always `sdk` for the shared instance.
  LoggerSubsystem subsystem() const noexcept { return LoggerSubsystem::sdk(); }
  LogLevel getLogLevel() const;
  std::shared_ptr<LogOutputter> logOutputter() const;
  /// Category raw values, in the order they were added, duplicates kept.
  std::vector<std::string> filters() const;
  std::vector<std::string> redactedValues() const;

  /// Sets the level and replaces the sink (null removes it); the filters stay.
  void setLogger(LogLevel logLevel, std::shared_ptr<LogOutputter> logOutputter);
  /// As above, then appends each category's raw value to the filters: earlier filters stay
  /// until cleared.
  void setLogger(LogLevel logLevel, std::shared_ptr<LogOutputter> logOutputter,
                 std::span<const LoggerCategory> filters);
  void clearLoggerFilters();
  /// Replaces the values scrubbed from every line. The core never sets any; an app may.
  void setRedactedValues(std::vector<std::string> values);

  /// Replaces the secrets `owner` holds (an empty list removes them). An owner is any address
  /// that stays the same while it holds its secrets, usually the object holding them, which
  /// removes them when it goes. Secrets are matched as redacted values are, longest first, so
  /// a secret that contains another is replaced whole; they never show in redactedValues().
  void setSecrets(const void* owner, std::vector<std::string> secrets);
  /// How many distinct secrets are registered now.
  std::size_t secretCount() const;

  VORNSdkLogger(const VORNSdkLogger&) = delete;
  VORNSdkLogger& operator=(const VORNSdkLogger&) = delete;

 private:
  VORNSdkLogger() = default;
  ~VORNSdkLogger() = default;
  void publishGate();  // requires mutex_
  // Every distinct secret, longest first, built on first use after a change.
  std::shared_ptr<const std::vector<std::string>> publishedSecrets();  // requires mutex_

  // The fast-path summary of the configuration: bits 0-7 hold the lowest level that passes
  // (beyond every level when there is no sink), bits 8-24 the filtered categories as a mask
  // (zero when there are no filters). Written under mutex_, read lock-free.
  static constexpr std::uint32_t kThresholdMask = 0xFF;
  static constexpr int kFilterShift = 8;
  static std::atomic<std::uint32_t> gate_;

  mutable std::mutex mutex_;
  LogLevel logLevel_ = LogLevel::none;          // guarded by mutex_
  std::shared_ptr<LogOutputter> logOutputter_;  // guarded by mutex_
  std::vector<std::string> filters_;            // guarded by mutex_
  std::uint32_t filterMask_ = 0;                // guarded by mutex_
  std::shared_ptr<const std::vector<std::string>> redactedValues_ =
      std::make_shared<const std::vector<std::string>>();           // guarded by mutex_
  std::map<const void*, std::vector<std::string>> secretsByOwner_;  // guarded by mutex_
  std::map<std::string, std::size_t> secretUses_;            // guarded by mutex_: owners per secret
  std::shared_ptr<const std::vector<std::string>> secrets_;  // guarded by mutex_; null: stale
};

}  // namespace vorn

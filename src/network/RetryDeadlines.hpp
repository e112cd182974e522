// The two deadlines of a request name in the network preferences, and the rules that set
// them (see NetworkManager.hpp).
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vorn/network/WrappedResponse.hpp"
#include "vorn/storage/prefs/SecurePrefs.hpp"

namespace vorn::network {

inline constexpr std::int64_t kMaxRetryAfterSeconds = 86400;

std::string serverKey(std::string_view name);
std::string deviceKey(std::string_view name);

/// The seconds of a Retry-After value: decimal digits only, within int64; else nothing.
std::optional<std::int64_t> parseRetryAfter(std::string_view text);

class RetryDeadlines {
 public:
  /// Null preferences hold no deadline.
  explicit RetryDeadlines(const std::shared_ptr<SecurePrefs>& prefs) : prefs_(prefs.get()) {}

  /// The later of the two deadlines when either is at or after `now`; otherwise removes the
  /// stored ones and gives nothing.
  std::optional<std::int64_t> blockingDeadline(std::string_view name, std::int64_t now) const;
  /// Stores the deadlines `response` sets for `name` (nothing without an HTTP response).
  void apply(std::string_view name, double rateLimit, const WrappedResponse& response) const;

 private:
  struct Stored {
    std::int64_t millis = 0;  // 0 when missing or unreadable
    bool present = false;     // something (even unreadable) may be stored under the key
  };
  static Stored stored(const ReadResult<std::string>& value);

  SecurePrefs* prefs_;
};

}  // namespace vorn::network

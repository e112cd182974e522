#include "network/RetryDeadlines.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "network/Saturating.hpp"

namespace vorn::network {

namespace {

bool isDigits(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

std::optional<std::int64_t> parseMillis(std::string_view text) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size())
    return std::nullopt;
  return value;
}

// The whole seconds of a positive rate limit; the fraction is dropped on purpose.
std::int64_t wholeSeconds(double rateLimit) {
  constexpr double kLargest = static_cast<double>(std::numeric_limits<std::int64_t>::max() / 1000);
  return static_cast<std::int64_t>(std::trunc(std::min(rateLimit, kLargest)));
}

}  // namespace

std::string serverKey(std::string_view name) {
  return "retry_server_" + std::string(name);
}
std::string deviceKey(std::string_view name) {
  return "retry_device_" + std::string(name);
}

std::optional<std::int64_t> parseRetryAfter(std::string_view text) {
  return isDigits(text) ? parseMillis(text) : std::nullopt;
}

RetryDeadlines::Stored RetryDeadlines::stored(const ReadResult<std::string>& value) {
  if (value.isAbsent())
    return {};
  const std::optional<std::int64_t> millis =
      value.isFound() ? parseMillis(value.value()) : std::nullopt;
  return {millis.value_or(0), true};
}

std::optional<std::int64_t> RetryDeadlines::blockingDeadline(std::string_view name,
                                                             std::int64_t now) const {
  if (!prefs_)
    return std::nullopt;
  const std::string server = serverKey(name);
  const std::string device = deviceKey(name);
  const std::array<std::string_view, 2> keys{server, device};
  const auto values = prefs_->readStrings(keys);
  const Stored serverDeadline = stored(values[0]);
  const Stored deviceDeadline = stored(values[1]);
  if (serverDeadline.millis >= now || deviceDeadline.millis >= now)
    return std::max(serverDeadline.millis, deviceDeadline.millis);
  // Both are past. A key that holds nothing needs no removal, which keeps the check of a
  // name without deadlines free of store writes.
  if (serverDeadline.present)
    prefs_->remove(server);
  if (deviceDeadline.present)
    prefs_->remove(device);
  return std::nullopt;
}

void RetryDeadlines::apply(std::string_view name, double rateLimit,
                           const WrappedResponse& response) const {
  if (!prefs_ || !response.response)
    return;
  const std::int64_t base = response.endTimeMillis;
  if (response.isSuccess() && rateLimit > 0) {
    const std::int64_t millis = saturatingMul(wholeSeconds(rateLimit), 1000);
    prefs_->setInt(saturatingAdd(millis, base), deviceKey(name));
  }
  const auto header = headerValue(response.response->headers, "Retry-After");
  const auto seconds = header ? parseRetryAfter(*header) : std::nullopt;
  if (seconds && *seconds > 0) {
    const std::int64_t millis = std::min(*seconds, kMaxRetryAfterSeconds) * 1000;
    prefs_->setInt(saturatingAdd(millis, base), serverKey(name));
  }
}

}  // namespace vorn::network

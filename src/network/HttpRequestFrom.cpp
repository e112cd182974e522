#include "network/HttpRequestFrom.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>

namespace vorn::network {

namespace {

std::chrono::milliseconds timeoutOf(double seconds) {
  if (!std::isfinite(seconds) || seconds <= 0)
    seconds = URLRequest::kDefaultTimeoutInterval;
  constexpr double kMaxMillis = static_cast<double>(std::numeric_limits<std::int64_t>::max() / 2);
  const double millis = std::min(std::ceil(seconds * 1000.0), kMaxMillis);
  return std::chrono::milliseconds(static_cast<std::int64_t>(millis));
}

}  // namespace

HttpRequest httpRequestFrom(const URLRequest& request) {
  HttpRequest out;
  out.method = request.httpMethod;
  out.url = request.url;
  out.headers = request.allHTTPHeaderFields();
  if (request.httpBody)
    out.body = *request.httpBody;
  out.timeout = timeoutOf(request.timeoutInterval);
  out.followRedirects = false;
  return out;
}

}  // namespace vorn::network

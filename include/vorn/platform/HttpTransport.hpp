// HttpTransport: runs one HTTP request and reports what came back.
//
// Only the mechanics live behind this seam. All policy (Retry-After, rate limits, refusing a
// request already in flight, token refresh) belongs to the network layer above it.
//
// Backends: curl() is the default of Platform::defaultPlatform(): libcurl with connections
// kept alive and reused across requests, TLS peers verified, redirects followed only when the
// request asks, the request's own time-out as the only limit, and a response body capped at
// kHttpMaxResponseBodyBytes (a larger body ends the call with HttpErrorCode::bodyTooLarge
// instead of growing memory). none() answers every request with HttpErrorCode::noTransport;
// the in-memory Platform uses it. Tests script answers with vorn::testing's transport.
//
// Ownership: shared (std::shared_ptr). Thread safety: perform() may be called from any number
// of threads at once; no lock of the transport is held while a transfer is under way, so a
// slow exchange never delays another.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vorn/base/Export.hpp"

namespace vorn {

/// Header fields in the order they were sent or received. Names keep their spelling; look
/// them up with headerValue(), which ignores case as HTTP does.
using HttpHeaders = std::vector<std::pair<std::string, std::string>>;

/// The first value of the field `name` (compared without regard to ASCII case), or nothing.
VORN_API std::optional<std::string> headerValue(const HttpHeaders& headers, std::string_view name);

/// The largest response body a transport accepts: 16 MiB.
inline constexpr std::size_t kHttpMaxResponseBodyBytes = std::size_t{16} << 20;

struct HttpRequest {
  std::string method = "GET";
  std::string url;
  HttpHeaders headers;
  std::vector<std::uint8_t> body;
  /// The only limit on the whole exchange, from connecting to the last body byte.
  std::chrono::milliseconds timeout{60000};
  bool followRedirects = false;
};

struct HttpResponse {
  int statusCode = 0;
  std::string url;
  HttpHeaders headers;
};

/// Why no response was received. Raw values are stable.
enum class HttpErrorCode : int {
  noTransport = 1,   // the none() transport, or a transport that was shut down
  badRequest = 2,    // the URL or method could not be used
  connection = 3,    // could not connect, or the connection broke
  timedOut = 4,      // the request's time-out passed
  bodyTooLarge = 5,  // the body exceeded kHttpMaxResponseBodyBytes
  protocol = 6,      // the server's answer was not valid HTTP
  tls = 7,           // the TLS handshake or peer verification failed
  other = 8,
};

/// A transport-level failure: no usable response was received.
struct HttpError {
  HttpErrorCode code = HttpErrorCode::other;
  std::string message;
};

/// What one exchange produced: a response (and its body, possibly empty) or an error.
struct HttpResult {
  std::optional<std::vector<std::uint8_t>> data;
  std::optional<HttpResponse> response;
  std::optional<HttpError> error;
};

class VORN_API HttpTransport {
 public:
  /// The libcurl transport (see above).
  static std::shared_ptr<HttpTransport> curl();
  /// A transport that sends nothing and answers every request with noTransport.
  static std::shared_ptr<HttpTransport> none();

  virtual ~HttpTransport();

  /// Runs the exchange on the calling thread and returns when it has ended: the caller is
  /// the one waiting for it anyway, and a hand-off to another thread would cost two wake-ups
  /// per request.
  virtual HttpResult perform(const HttpRequest& request) = 0;
};

}  // namespace vorn

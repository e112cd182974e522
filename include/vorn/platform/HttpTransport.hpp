// HttpTransport: runs one HTTP request and reports what came back.
//
// Only the mechanics live behind this seam. All policy (Retry-After, rate limits, refusing a
// request already in flight, token refresh) belongs to the network layer above it.
//
// Ownership: shared (std::shared_ptr). Thread safety: send() may be called from any thread;
// completions run on a thread of the transport's choosing, never inside send(), and no lock
// of the transport is held while they run.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "vorn/base/Export.hpp"

namespace vorn {

using HttpHeaders = std::vector<std::pair<std::string, std::string>>;

struct HttpRequest {
  std::string method = "GET";
  std::string url;
  HttpHeaders headers;
  std::vector<std::uint8_t> body;
  std::chrono::milliseconds timeout{60000};
};

struct HttpResponse {
  int statusCode = 0;
  std::string url;
  HttpHeaders headers;
};

/// A transport-level failure: no response was received.
struct HttpError {
  int code = 0;
  std::string message;
};

class VORN_API HttpTransport {
 public:
  using Completion =
      std::function<void(std::optional<std::vector<std::uint8_t>> data,
                         std::optional<HttpResponse> response, std::optional<HttpError> error)>;

  virtual ~HttpTransport();

  /// Starts the request and returns at once; `completion` runs exactly once.
  virtual void send(HttpRequest request, Completion completion) = 0;
};

}  // namespace vorn

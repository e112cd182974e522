// ScriptedHttpTransport: an HttpTransport whose answers the test decides, recording every
// request it is given. Queued answers are used first, in order; then the handler; without a
// handler every request gets a noTransport error. Thread-safe; the handler runs on the
// performing thread without the transport's lock held, so it may block (to hold a request "in
// flight") or call back into the transport.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "vorn/platform/HttpTransport.hpp"

namespace vorn::testing {

/// A response with `status`, `headers` and `body`.
HttpResult httpAnswer(int status, HttpHeaders headers = {}, std::string body = "");
/// A transport failure with no response.
HttpResult httpFailure(HttpErrorCode code, std::string message = "scripted failure");

class ScriptedHttpTransport final : public HttpTransport {
 public:
  using Handler = std::function<HttpResult(const HttpRequest&)>;

  void setHandler(Handler handler);
  void enqueue(HttpResult result);
  /// Every request performed so far, in order.
  std::vector<HttpRequest> requests() const;
  std::size_t requestCount() const;

  HttpResult perform(const HttpRequest& request) override;

 private:
  mutable std::mutex mutex_;
  Handler handler_;                // guarded by mutex_
  std::deque<HttpResult> queued_;  // guarded by mutex_
  std::vector<HttpRequest> seen_;  // guarded by mutex_
};

}  // namespace vorn::testing

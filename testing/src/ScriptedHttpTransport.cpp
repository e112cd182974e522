#include "vorn/testing/ScriptedHttpTransport.hpp"

namespace vorn::testing {

HttpResult httpAnswer(int status, HttpHeaders headers, std::string body) {
  HttpResponse response{.statusCode = status, .url = "", .headers = std::move(headers)};
  return {.data = std::vector<std::uint8_t>(body.begin(), body.end()),
          .response = std::move(response),
          .error = std::nullopt};
}

HttpResult httpFailure(HttpErrorCode code, std::string message) {
  return {.error = HttpError{code, std::move(message)}};
}

void ScriptedHttpTransport::setHandler(Handler handler) {
  std::lock_guard lock(mutex_);
  handler_ = std::move(handler);
}

void ScriptedHttpTransport::enqueue(HttpResult result) {
  std::lock_guard lock(mutex_);
  queued_.push_back(std::move(result));
}

std::vector<HttpRequest> ScriptedHttpTransport::requests() const {
  std::lock_guard lock(mutex_);
  return seen_;
}

std::size_t ScriptedHttpTransport::requestCount() const {
  std::lock_guard lock(mutex_);
  return seen_.size();
}

HttpResult ScriptedHttpTransport::perform(const HttpRequest& request) {
  Handler handler;
  {
    std::lock_guard lock(mutex_);
    seen_.push_back(request);
    if (!queued_.empty()) {
      HttpResult result = std::move(queued_.front());
      queued_.pop_front();
      return result;
    }
    handler = handler_;
  }
  return handler ? handler(request) : httpFailure(HttpErrorCode::noTransport);
}

}  // namespace vorn::testing

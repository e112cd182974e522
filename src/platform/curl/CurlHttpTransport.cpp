#include "platform/curl/CurlHttpTransport.hpp"

#include <memory>

#include "platform/curl/CurlExchange.hpp"

namespace vorn {

namespace platform {

HttpResult CurlHttpTransport::perform(const HttpRequest& request) {
  CurlLease lease(pool_);
  if (lease.get() == nullptr)
    return {.error = HttpError{HttpErrorCode::other, "libcurl could not create a handle."}};
  CurlExchange exchange(lease.get(), request);
  return exchange.run();
}

}  // namespace platform

std::shared_ptr<HttpTransport> HttpTransport::curl() {
  return std::make_shared<platform::CurlHttpTransport>();
}

}  // namespace vorn

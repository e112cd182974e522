#include <utility>

#include "network/UrlText.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/network/WrappedRequest.hpp"

namespace vorn {

using Builder = WrappedRequest::Builder;

Builder& Builder::method(std::string method) {
  method_ = std::move(method);
  return *this;
}

Builder& Builder::url(std::string_view url) {
  url_ = network::isParsableUrl(url) ? std::optional<std::string>(url) : std::nullopt;
  return *this;
}

Builder& Builder::urlWithBase(std::string_view base, std::string_view path) {
  return url(network::joinUrl(base, path));
}

Builder& Builder::addOrReplaceHeader(std::string key, std::string value) {
  headers_.insert_or_assign(std::move(key), std::move(value));
  return *this;
}

Builder& Builder::body(Bytes body) {
  body_ = std::move(body);
  return *this;
}

Builder& Builder::timeout(double seconds) {
  timeout_ = seconds;
  return *this;
}

Builder& Builder::rateLimit(double seconds) {
  rateLimit_ = seconds;
  return *this;
}

Builder& Builder::name(std::string name) {
  name_ = std::move(name);
  return *this;
}

Builder& Builder::tag(std::string tag) {
  tag_ = std::move(tag);
  return *this;
}

std::optional<WrappedRequest> Builder::build() const {
  if (!method_ || !url_ || !name_) {
    VORN_LOG_DEBUG(LoggerCategory::network, "build() called on invalid WrappedRequest.Builder()");
    return std::nullopt;
  }
  URLRequest request(*url_, URLRequest::kUseProtocolCachePolicy,
                     URLRequest::kDefaultTimeoutInterval);
  request.httpMethod = *method_;
  request.cachePolicy = URLRequest::kReloadIgnoringLocalCacheData;
  request.timeoutInterval = timeout_;
  for (const auto& [key, value] : headers_)
    request.setValue(value, key);
  if (body_)
    request.httpBody = *body_;
  return WrappedRequest{std::move(request), *name_, rateLimit_, tag_};
}

}  // namespace vorn

#include "platform/curl/CurlExchange.hpp"

#include <algorithm>
#include <climits>
#include <string>
#include <string_view>

#include "platform/curl/CurlErrors.hpp"

namespace vorn::platform {
namespace {

bool isToken(std::string_view text) {
  constexpr std::string_view kSymbols = "!#$%&'*+-.^_`|~";
  auto tokenChar = [&](char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           kSymbols.find(c) != std::string_view::npos;
  };
  return !text.empty() && std::all_of(text.begin(), text.end(), tokenChar);
}

bool isFieldValue(std::string_view text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kSpace = " \t\r\n";
  const auto first = text.find_first_not_of(kSpace);
  if (first == std::string_view::npos)
    return {};
  return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

long timeoutMillis(std::chrono::milliseconds timeout) {
  // libcurl reads 0 as "no limit": a zero or negative time-out expires at once instead.
  return static_cast<long>(
      std::clamp<std::chrono::milliseconds::rep>(timeout.count(), 1, LONG_MAX));
}

HttpError badRequest(std::string message) {
  return {HttpErrorCode::badRequest, std::move(message)};
}

}  // namespace

HttpResult CurlExchange::run() {
  if (auto refused = configure())
    return {.error = std::move(*refused)};
  return finish(curl_easy_perform(handle_));
}

std::optional<HttpError> CurlExchange::configure() {
  if (!isToken(request_.method))
    return badRequest("The method `" + request_.method + "` is not an HTTP token.");
  if (auto refused = setHeaders())
    return refused;
  setTransferLimits();
  setCallbacks();
  setMethodAndBody();
  return std::nullopt;
}

void CurlExchange::setTransferLimits() {
  const long timeout = timeoutMillis(request_.timeout);
  curl_easy_setopt(handle_, CURLOPT_URL, request_.url.c_str());
  curl_easy_setopt(handle_, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(handle_, CURLOPT_TIMEOUT_MS, timeout);
  curl_easy_setopt(handle_, CURLOPT_CONNECTTIMEOUT_MS, timeout);
  curl_easy_setopt(handle_, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(handle_, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(handle_, CURLOPT_FOLLOWLOCATION, request_.followRedirects ? 1L : 0L);
  curl_easy_setopt(handle_, CURLOPT_SSL_VERIFYPEER, 1L);
  curl_easy_setopt(handle_, CURLOPT_SSL_VERIFYHOST, 2L);
}

void CurlExchange::setCallbacks() {
  curl_easy_setopt(handle_, CURLOPT_ERRORBUFFER, errorBuffer_);
  curl_easy_setopt(handle_, CURLOPT_HEADERFUNCTION, &CurlExchange::onHeader);
  curl_easy_setopt(handle_, CURLOPT_HEADERDATA, this);
  curl_easy_setopt(handle_, CURLOPT_WRITEFUNCTION, &CurlExchange::onBody);
  curl_easy_setopt(handle_, CURLOPT_WRITEDATA, this);
}

std::optional<HttpError> CurlExchange::setHeaders() {
  curl_slist* list = nullptr;
  for (const auto& [name, value] : request_.headers) {
    if (!isToken(name) || !isFieldValue(value)) {
      curl_slist_free_all(list);
      return badRequest("The header `" + name + "` cannot be sent.");
    }
    list = curl_slist_append(list, (value.empty() ? name + ";" : name + ": " + value).c_str());
  }
  if (!headerValue(request_.headers, "Expect"))
    list = curl_slist_append(list, "Expect:");
  headerList_.reset(list);
  curl_easy_setopt(handle_, CURLOPT_HTTPHEADER, list);
  return std::nullopt;
}

void CurlExchange::setMethodAndBody() {
  const std::string& method = request_.method;
  if (method == "HEAD") {
    curl_easy_setopt(handle_, CURLOPT_NOBODY, 1L);
    return;
  }
  // Not for HEAD: libcurl would hold the length of the body it will never read against it.
  curl_easy_setopt(handle_, CURLOPT_MAXFILESIZE_LARGE,
                   static_cast<curl_off_t>(kHttpMaxResponseBodyBytes));
  const bool sendsBody = !request_.body.empty() || method == "POST";
  if (sendsBody)
    setBody();
  if (method == "GET" && !sendsBody)
    curl_easy_setopt(handle_, CURLOPT_HTTPGET, 1L);
  else if (method != "POST")
    curl_easy_setopt(handle_, CURLOPT_CUSTOMREQUEST, method.c_str());
}

void CurlExchange::setBody() {
  // Never a null pointer: libcurl would then read the body from stdin.
  static constexpr char kEmpty[] = "";
  const void* data =
      request_.body.empty() ? static_cast<const void*>(kEmpty) : request_.body.data();
  curl_easy_setopt(handle_, CURLOPT_POST, 1L);
  curl_easy_setopt(handle_, CURLOPT_POSTFIELDSIZE_LARGE,
                   static_cast<curl_off_t>(request_.body.size()));
  curl_easy_setopt(handle_, CURLOPT_POSTFIELDS, data);
}

HttpResult CurlExchange::finish(CURLcode code) {
  if (bodyTooLarge_ || code == CURLE_FILESIZE_EXCEEDED) {
    body_ = {};
    return {.error = HttpError{HttpErrorCode::bodyTooLarge,
                               "The response body exceeds " +
                                   std::to_string(kHttpMaxResponseBodyBytes) + " bytes."}};
  }
  if (code != CURLE_OK) {
    long requestSize = 0;
    curl_easy_getinfo(handle_, CURLINFO_REQUEST_SIZE, &requestSize);
    return {.error = curlError(code, requestSize > 0, errorBuffer_)};
  }
  HttpResponse response;
  long status = 0;
  curl_easy_getinfo(handle_, CURLINFO_RESPONSE_CODE, &status);
  response.statusCode = static_cast<int>(status);
  const char* effectiveUrl = nullptr;
  curl_easy_getinfo(handle_, CURLINFO_EFFECTIVE_URL, &effectiveUrl);
  response.url = effectiveUrl != nullptr ? effectiveUrl : request_.url;
  response.headers = std::move(responseHeaders_);
  return {.data = std::move(body_), .response = std::move(response)};
}

void CurlExchange::keepHeaderLine(std::string_view line) {
  if (line.starts_with("HTTP/")) {
    responseHeaders_.clear();
    return;
  }
  if ((line.starts_with(' ') || line.starts_with('\t')) && !responseHeaders_.empty()) {
    const auto more = trimmed(line);
    if (!more.empty())
      responseHeaders_.back().second.append(" ").append(more);
    return;
  }
  const auto colon = line.find(':');
  if (colon == std::string_view::npos || colon == 0)
    return;
  responseHeaders_.emplace_back(std::string(line.substr(0, colon)),
                                std::string(trimmed(line.substr(colon + 1))));
}

std::size_t CurlExchange::onHeader(char* data, std::size_t size, std::size_t count, void* self) {
  static_cast<CurlExchange*>(self)->keepHeaderLine(std::string_view(data, size * count));
  return size * count;
}

std::size_t CurlExchange::onBody(char* data, std::size_t size, std::size_t count, void* self) {
  auto& exchange = *static_cast<CurlExchange*>(self);
  const std::size_t length = size * count;
  if (exchange.body_.size() + length > kHttpMaxResponseBodyBytes) {
    exchange.bodyTooLarge_ = true;
    return 0;  // any short count makes libcurl abort the transfer
  }
  exchange.body_.insert(exchange.body_.end(), data, data + length);
  return length;
}

}  // namespace vorn::platform

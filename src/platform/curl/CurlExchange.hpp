// CurlExchange: one request run on one pooled easy handle, from options to HttpResult.
//
// Options are set afresh on every exchange (the pool resets handles), so nothing of an
// earlier request carries over. The choices that are not libcurl's defaults, and why:
// - The request's time-out bounds the whole exchange and the connect phase alike: libcurl's
//   own 300 s connect limit would otherwise cut a longer time-out short. NOSIGNAL, because a
//   library must not have libcurl raise SIGALRM in the host's threads.
// - Only http and https, also after a redirect: a URL from a server must not reach file:.
// - "Expect: 100-continue" is suppressed: it costs a round trip per large body and servers
//   that do not answer it stall the upload for a second.
// - A header with an empty value is sent as "Name;": "Name:" would tell libcurl to drop it.
// - A method or header that would break the request line (not a token, or a CR or LF in a
//   value) is refused as badRequest rather than sent.
// - HEAD asks for no body; every other method sends the request's body when it has one
//   (POST also when it is empty, as Content-Length: 0).
// - Headers are kept for the final response only: a followed redirect or an interim 1xx
//   starts a new list. Folded lines join the previous value.
// - The body is capped: MAXFILESIZE refuses an announced oversize length before reading it
//   (except for HEAD, whose announced length describes a body that never comes), and the
//   write callback stops a chunked or lying body at the cap. Either way the bytes read so far
//   are dropped and the result is bodyTooLarge.
#pragma once

#include <curl/curl.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "vorn/platform/HttpTransport.hpp"

namespace vorn::platform {

class CurlExchange {
 public:
  CurlExchange(CURL* handle, const HttpRequest& request) : handle_(handle), request_(request) {}
  CurlExchange(const CurlExchange&) = delete;
  CurlExchange& operator=(const CurlExchange&) = delete;

  /// Runs the transfer on the calling thread and reports its outcome.
  HttpResult run();

 private:
  struct SlistFree {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };

  std::optional<HttpError> configure();
  std::optional<HttpError> setHeaders();
  void setTransferLimits();
  void setCallbacks();
  void setMethodAndBody();
  void setBody();
  HttpResult finish(CURLcode code);
  void keepHeaderLine(std::string_view line);

  static std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* self);
  static std::size_t onBody(char* data, std::size_t size, std::size_t count, void* self);

  CURL* handle_;
  const HttpRequest& request_;
  std::unique_ptr<curl_slist, SlistFree> headerList_;
  HttpHeaders responseHeaders_;
  std::vector<std::uint8_t> body_;
  bool bodyTooLarge_ = false;
  char errorBuffer_[CURL_ERROR_SIZE] = {};
};

}  // namespace vorn::platform

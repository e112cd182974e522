// CurlHttpTransport: the libcurl backend of HttpTransport::curl().
//
// perform() runs on the caller's thread with the easy interface: the network layer already
// waits on a thread of its own per request, so a multi handle with its own event thread would
// only add a hand-off each way. Keep-alive comes from the handle pool (CurlHandlePool.hpp):
// an exchange leases a warm handle, runs without any lock of ours held, and returns it.
// How each request is turned into options is in CurlExchange.hpp.
//
// Thread safety: perform() may run on any number of threads at once.
#pragma once

#include "platform/curl/CurlHandlePool.hpp"
#include "vorn/platform/HttpTransport.hpp"

namespace vorn::platform {

class CurlHttpTransport final : public HttpTransport {
 public:
  HttpResult perform(const HttpRequest& request) override;

 private:
  CurlHandlePool pool_;
};

}  // namespace vorn::platform

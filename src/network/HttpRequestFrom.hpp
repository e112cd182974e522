// The transport's view of a URLRequest.
#pragma once

#include "vorn/network/URLRequest.hpp"
#include "vorn/platform/HttpTransport.hpp"

namespace vorn::network {

/// Method, URL, header fields and body as they are; the time-out in whole milliseconds (one
/// that is not a positive finite number gives the platform's 60 s); redirects are not
/// followed, so a 3xx reaches the caller as it came.
HttpRequest httpRequestFrom(const URLRequest& request);

}  // namespace vorn::network

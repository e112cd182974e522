// How a failed libcurl transfer is reported to the network layer: the HttpErrorCode says what
// the caller can do about it (retry later, give up on the URL, suspect the server), the
// message keeps libcurl's own detail for the log.
#pragma once

#include <curl/curl.h>

#include <string>

#include "vorn/platform/HttpTransport.hpp"

namespace vorn::platform {

/// The error for `code`. `requestSent` tells a refusal of our own URL (an unsupported scheme)
/// from the same code raised by a server's answer (an HTTP/0.9 reply); `detail` is libcurl's
/// error buffer, possibly empty.
HttpError curlError(CURLcode code, bool requestSent, const std::string& detail);

}  // namespace vorn::platform

#include "platform/curl/CurlErrors.hpp"

namespace vorn::platform {
namespace {

HttpErrorCode tlsOrOther(CURLcode code) {
  switch (code) {
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CRL_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case CURLE_SSL_SHUTDOWN_FAILED:
    case CURLE_SSL_ENGINE_NOTFOUND:
    case CURLE_SSL_ENGINE_SETFAILED:
    case CURLE_SSL_ENGINE_INITFAILED:
    case CURLE_SSL_CLIENTCERT:
    case CURLE_USE_SSL_FAILED:
      return HttpErrorCode::tls;
    default:
      return HttpErrorCode::other;
  }
}

HttpErrorCode errorCode(CURLcode code, bool requestSent) {
  switch (code) {
    case CURLE_OPERATION_TIMEDOUT:
      return HttpErrorCode::timedOut;
    case CURLE_URL_MALFORMAT:
      return HttpErrorCode::badRequest;
    case CURLE_UNSUPPORTED_PROTOCOL:
      return requestSent ? HttpErrorCode::protocol : HttpErrorCode::badRequest;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_CONNECT:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_SEND_FAIL_REWIND:
      return HttpErrorCode::connection;
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
    case CURLE_HTTP3:
    case CURLE_TOO_MANY_REDIRECTS:
    case CURLE_BAD_CONTENT_ENCODING:
    case CURLE_RANGE_ERROR:
      return HttpErrorCode::protocol;
    case CURLE_FILESIZE_EXCEEDED:
      return HttpErrorCode::bodyTooLarge;
    default:
      return tlsOrOther(code);
  }
}

}  // namespace

HttpError curlError(CURLcode code, bool requestSent, const std::string& detail) {
  std::string message = curl_easy_strerror(code);
  if (!detail.empty())
    message += ": " + detail;
  return {errorCode(code, requestSent), std::move(message)};
}

}  // namespace vorn::platform

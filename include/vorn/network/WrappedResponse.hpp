// WrappedResponse: what one call of the network manager brought back, and CompletedCall, the
// request paired with it.
//
// A response with an HTTP status has `response` (and `data`, the body, possibly empty); a call
// that got no response has `error` instead (a refusal or a transport failure, see
// ResponseError). Times are milliseconds since 1970 from the manager's clock; a refused call
// has both set to the moment of refusal.
//
// Plain value types.
#pragma once

#include <cstdint>
#include <optional>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Export.hpp"
#include "vorn/network/ResponseError.hpp"
#include "vorn/network/WrappedRequest.hpp"
#include "vorn/platform/HttpTransport.hpp"

namespace vorn {

struct VORN_API WrappedResponse {
  std::optional<Bytes> data;
  std::optional<HttpResponse> response;
  std::optional<ResponseError> error;
  std::int64_t startTimeMillis = 0;
  std::int64_t endTimeMillis = 0;

  /// A response is present and its status is 200...299.
  bool isSuccess() const noexcept;
  /// A response is present and its status is 401.
  bool isUnauthorized() const noexcept;
  /// endTimeMillis - startTimeMillis (saturating).
  std::int64_t timeToExecute() const noexcept;
};

struct CompletedCall {
  WrappedRequest wrappedRequest;
  WrappedResponse wrappedResponse;
};

}  // namespace vorn

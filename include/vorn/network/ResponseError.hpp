// ResponseError: what went wrong with a call that brought back no HTTP response.
//
// Either a refusal by the network manager (nothing was sent; it carries the
// NetworkManagerError) or a transport failure (the exchange was attempted; it carries the
// transport's HttpError). The two are kept apart because a caller reacts differently: a
// refusal is the SDK protecting the backend and should not be retried at once, a transport
// failure may be.
//
// Plain value type.
#pragma once

#include <optional>
#include <string>
#include <variant>

#include "vorn/base/Export.hpp"
#include "vorn/network/NetworkManagerError.hpp"
#include "vorn/platform/HttpTransport.hpp"

namespace vorn {

class VORN_API ResponseError {
 public:
  static ResponseError refusal(NetworkManagerError error) { return ResponseError(error); }
  static ResponseError transport(HttpError error) { return ResponseError(std::move(error)); }

  bool isRefusal() const noexcept { return std::holds_alternative<NetworkManagerError>(error_); }
  /// The refusal, or nothing for a transport failure.
  std::optional<NetworkManagerError> refusalError() const;
  /// The transport failure, or null for a refusal.
  const HttpError* transportError() const noexcept { return std::get_if<HttpError>(&error_); }
  /// A one-line description of either kind.
  std::string message() const;

 private:
  explicit ResponseError(std::variant<NetworkManagerError, HttpError> error)
      : error_(std::move(error)) {}

  std::variant<NetworkManagerError, HttpError> error_;
};

}  // namespace vorn

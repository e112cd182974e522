#include "vorn/network/ResponseError.hpp"

namespace vorn {

std::optional<NetworkManagerError> ResponseError::refusalError() const {
  if (const auto* refusal = std::get_if<NetworkManagerError>(&error_))
    return *refusal;
  return std::nullopt;
}

std::string ResponseError::message() const {
  if (const auto refusal = refusalError())
    return "Refused: " + std::string(describe(*refusal));
  const HttpError& failure = std::get<HttpError>(error_);
  return "Transport error " + std::to_string(static_cast<int>(failure.code)) + ": " +
         failure.message;
}

}  // namespace vorn

#include "vorn/network/WrappedResponse.hpp"

#include "network/Saturating.hpp"

namespace vorn {

bool WrappedResponse::isSuccess() const noexcept {
  return response && response->statusCode >= 200 && response->statusCode <= 299;
}

bool WrappedResponse::isUnauthorized() const noexcept {
  return response && response->statusCode == 401;
}

std::int64_t WrappedResponse::timeToExecute() const noexcept {
  return network::saturatingSub(endTimeMillis, startTimeMillis);
}

}  // namespace vorn

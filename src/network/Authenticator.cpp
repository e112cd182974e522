#include "vorn/network/Authenticator.hpp"

namespace vorn {

Authenticator::~Authenticator() = default;

}  // namespace vorn

#include "vorn/messaging/Subscriber.hpp"

namespace vorn {

Subscriber::~Subscriber() = default;

}  // namespace vorn

#include "vorn/core/VORNModule.hpp"

namespace vorn {

VORNModule::~VORNModule() = default;

std::shared_ptr<Subscriber> VORNModule::asSubscriber() {
  return nullptr;
}

}  // namespace vorn

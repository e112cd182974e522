#include "vorn/behavior/BehaviorObserver.hpp"

#include "vorn/behavior/BehaviorDelegate.hpp"

namespace vorn {

BehaviorObserver::~BehaviorObserver() = default;

BehaviorDelegate::~BehaviorDelegate() = default;

}  // namespace vorn

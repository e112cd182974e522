#include "PushListeners.hpp"

#include "PushModule.hpp"
#include "vorn/events/IdentityEvent.hpp"

namespace push {

std::set<int> PushBehaviorObserver::behaviorTypesToObserve() const {
  return {static_cast<int>(vorn::BehaviorType::appForegrounded),
          static_cast<int>(vorn::BehaviorType::appVersionChanged)};
}

void PushBehaviorObserver::onBehavior(const std::shared_ptr<const vorn::Behavior>& behavior) {
  const std::shared_ptr<PushModule> module = module_.lock();
  if (!module || !behavior)
    return;
  if (behavior->type() == vorn::BehaviorType::appForegrounded)
    module->onForeground();
  else if (behavior->type() == vorn::BehaviorType::appVersionChanged)
    module->onAppVersionChanged();
}

void PushSubscriber::receive(std::shared_ptr<const vorn::Message> message) {
  const std::shared_ptr<PushModule> module = module_.lock();
  if (!module || !message)
    return;
  if (const auto identity =
          std::dynamic_pointer_cast<const vorn::IdentityEvent>(message->fromEvent()))
    module->onIdentity(*identity);
}

}  // namespace push

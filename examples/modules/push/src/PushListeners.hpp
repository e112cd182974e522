// The push module's listeners: its behaviour observer (foreground, app version change) and
// its event bus subscriber (identity events). Each holds the module weakly and forwards to
// it, so a listener kept by the core after the module is gone does nothing.
//
// Ownership: owned by the module through std::shared_ptr; the behaviour manager and the bus
// hold them weakly. Thread safety: called from any thread, possibly at once.
#pragma once

#include <memory>
#include <set>

#include "vorn/behavior/BehaviorObserver.hpp"
#include "vorn/messaging/Subscriber.hpp"

namespace push {

class PushModule;

class PushBehaviorObserver final : public vorn::BehaviorObserver {
 public:
  explicit PushBehaviorObserver(std::weak_ptr<PushModule> module) : module_(std::move(module)) {}

  /// AppForegrounded (0) and AppVersionChanged (2).
  std::set<int> behaviorTypesToObserve() const override;
  void onBehavior(const std::shared_ptr<const vorn::Behavior>& behavior) override;

 private:
  const std::weak_ptr<PushModule> module_;
};

class PushSubscriber final : public vorn::Subscriber {
 public:
  explicit PushSubscriber(std::weak_ptr<PushModule> module) : module_(std::move(module)) {}

  vorn::ModuleName name() const override { return vorn::ModuleName::push; }
  /// Passes identity events on; other messages are not the push module's business.
  void receive(std::shared_ptr<const vorn::Message> message) override;

 private:
  const std::weak_ptr<PushModule> module_;
};

}  // namespace push

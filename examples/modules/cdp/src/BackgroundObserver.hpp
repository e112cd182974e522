// BackgroundObserver: the module's behaviour observer. It asks for AppBackgrounded (raw type
// 1) only and calls its callback for it. The callback holds the module weakly, so a
// behaviour delivered while the module goes away does nothing. Thread-safe.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <utility>

#include "vorn/behavior/BehaviorObserver.hpp"

namespace cdp {

class BackgroundObserver final : public vorn::BehaviorObserver {
 public:
  explicit BackgroundObserver(std::function<void()> onBackground)
      : onBackground_(std::move(onBackground)) {}

  std::set<int> behaviorTypesToObserve() const override {
    return {vorn::rawValue(vorn::BehaviorType::appBackgrounded)};
  }
  void onBehavior(const std::shared_ptr<const vorn::Behavior>& behavior) override {
    if (behavior && behavior->type() == vorn::BehaviorType::appBackgrounded)
      onBackground_();
  }

 private:
  const std::function<void()> onBackground_;
};

}  // namespace cdp

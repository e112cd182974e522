// BehaviorManagerConfig: how the behaviour manager is set up. Plain value type.
#pragma once

#include <optional>

namespace vorn {

struct BehaviorManagerConfig {
  /// Screen entries are tracked unless this is explicitly false; absent means on.
  std::optional<bool> enableScreenEntryTracking;
};

}  // namespace vorn

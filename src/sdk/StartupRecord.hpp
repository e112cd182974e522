// The SDK's process-wide record: what configuration was last applied, how far start-up got,
// and the identity the app reads through VORNSdk. Created on first use, which is also when
// the facades' status and identity sources are installed below them.
#pragma once

#include <memory>
#include <optional>

#include "vorn/base/InitializationState.hpp"
#include "vorn/core/Config.hpp"
#include "vorn/identity/IDENTITY.hpp"
#include "vorn/runtime/Atomic.hpp"

namespace vorn::detail {

struct StartupRecord {
  StartupRecord();

  Atomic<std::optional<Config>> lastAppliedConfig;
  Atomic<InitializationState> initializationState{InitializationState::NONE};
  Atomic<std::shared_ptr<IDENTITY>> identity;
};

/// Never destroyed: a start-up still running at exit may write to it. Thread-safe.
StartupRecord& startupRecord();

}  // namespace vorn::detail

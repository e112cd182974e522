// One start-up of the SDK, run on the start-up queue.
#pragma once

#include "vorn/core/Config.hpp"
#include "vorn/runtime/DispatchQueue.hpp"

namespace vorn::detail {

/// The serial queue "com.quorvantis.tessarine.vornsdk.initializesdk", created on first use
/// and never destroyed.
DispatchQueue& startupQueue();

/// Every step of a start-up with `config`, blocking the calling thread (the start-up queue)
/// for the key store check and the wait for the modules.
void runStartup(const Config& config);

}  // namespace vorn::detail

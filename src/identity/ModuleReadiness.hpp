// Whether a profile id or attributes may be sent to one module alone: it must be
// operational and subscribed to the event bus. A module that is not says why in a warning
// (category `identity`). Thread-safe.
#pragma once

#include "vorn/base/ModuleName.hpp"

namespace vorn::detail {

bool isReadyForIdentity(ModuleName module);

}  // namespace vorn::detail

// DeferredCall: one unit of work kept to be run later, e.g. a request an app made before the
// module that serves it was operational. Whoever keeps it decides when, and on which queue,
// it runs.
#pragma once

#include <functional>

namespace vorn {

struct DeferredCall {
  std::function<void()> closure;
};

}  // namespace vorn

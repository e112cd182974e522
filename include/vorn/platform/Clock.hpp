// Clock: the wall clock as the library reads it, in milliseconds since 1970 (UTC).
//
// A seam so tests can hold time still or move it by hand. system() is the real clock and is
// never destroyed. now() may be called from any thread in every implementation.
#pragma once

#include <cstdint>
#include <memory>

#include "vorn/base/Export.hpp"

namespace vorn {

class VORN_API Clock {
 public:
  static std::shared_ptr<Clock> system();

  virtual ~Clock();
  /// Signed milliseconds since 1970-01-01T00:00:00Z.
  virtual std::int64_t nowMillis() = 0;
};

}  // namespace vorn

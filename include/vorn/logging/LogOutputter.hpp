// The sink a log line ends in. Apps subclass it to route the SDK's lines into their own
// logging; the base class writes to the process's standard error.
//
// `out` is called on whatever thread logged, possibly on several at once, and never with a
// logger lock held: an override must be thread-safe and may itself log.
#pragma once

#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/logging/LogLevel.hpp"
#include "vorn/logging/LoggerCategory.hpp"

namespace vorn {

class VORN_API LogOutputter {
 public:
  virtual ~LogOutputter();

  /// Writes one line. `subsystem` is the subsystem's raw value; `message` is already
  /// redacted and carries no time stamp or prefix of its own.
  ///
  /// The default writes "<subsystem>/<category> <type>: <message>" with a single write(2) to
  /// standard error, so that concurrent lines never interleave. Standard error rather than
  /// syslog: it exists on every target (phones' native log bridges, embedded Linux, CI
  /// containers without a syslog daemon) and the host can always redirect it, while the
  /// level travels as the platform log type ("debug", "default", "error", "fault"). `none`
  /// writes nothing.
  virtual void out(LogLevel level, std::string_view subsystem, LoggerCategory category,
                   std::string_view message);
};

}  // namespace vorn

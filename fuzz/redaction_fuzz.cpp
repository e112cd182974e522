// Redaction over arbitrary bytes: the first byte splits the input into a redacted value and
// a message. Whatever the bytes, a line comes out, and it never still holds the value when
// the value is plain ASCII.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "vorn/logging/ModuleLogger.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static auto sink = vorn::testing::CaptureLogSink::install();
  if (size == 0)
    return 0;
  const std::size_t split = std::min<std::size_t>(data[0], size - 1);
  const std::string value(reinterpret_cast<const char*>(data + 1), split);
  const std::string message(reinterpret_cast<const char*>(data + 1 + split), size - 1 - split);
  vorn::ModuleLogger logger(vorn::ModuleName::push, {value});
  sink->clear();
  logger.d(vorn::LoggerCategory::module, message);
  if (sink->lines().size() != 1)
    std::abort();
  return 0;
}

// Logger categories and subsystems parsed from any text, as a host's settings name them.
// Parsing never fails for categories (unknown text is `sdk`), and a subsystem that parses is
// one of the three names.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "vorn/logging/LoggerCategory.hpp"
#include "vorn/logging/LoggerSubsystem.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto sink = vorn::testing::CaptureLogSink::install();
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const vorn::LoggerCategory category = vorn::loggerCategoryFrom(text);
  sink->clear();
  if (static_cast<int>(category) < 0 || static_cast<int>(category) >= vorn::kLoggerCategoryCount)
    std::abort();
  if (const auto subsystem = vorn::loggerSubsystemFrom(text)) {
    const std::string_view name = subsystem->isSdk() ? "sdk" : vorn::rawValue(*subsystem);
    if (name != text)
      std::abort();
  }
  return 0;
}

// Compatibility ranges built from any two texts and asked about any version. A range that
// is made counts the parts of both ends alike, and only accepts versions with that count.
#include <cstdint>
#include <cstdlib>

#include "FuzzInput.hpp"
#include "vorn/core/Compatibility.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto sink = vorn::testing::CaptureLogSink::install();
  vorn::fuzz::FuzzInput input(data, size);
  const std::string min = input.text();
  const std::string max = input.text();
  const std::string version = input.restText();
  const std::size_t versionParts = vorn::Compatibility::partCount(version);
  const auto range = vorn::Compatibility::create(min, max);
  sink->clear();
  if (!range)
    return 0;
  const std::size_t parts = range->semanticsCount();
  if (vorn::Compatibility::partCount(range->min()) != parts ||
      vorn::Compatibility::partCount(range->max()) != parts)
    std::abort();
  if (range->isCompatible(version) && versionParts != parts)
    std::abort();
  return 0;
}

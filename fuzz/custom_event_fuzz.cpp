// Custom events: the one event whose name and attribute keys the app chooses. Any name and
// any attributes give either no event or an event whose name and keys obey the rules: not
// empty, no leading "$", and no "." in a key.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "FuzzInput.hpp"
#include "vorn/events/CustomEvent.hpp"
#include "vorn/testing/CaptureLogSink.hpp"

namespace {

bool allowed(std::string_view text) {
  return !text.empty() && text.front() != '$';
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto sink = vorn::testing::CaptureLogSink::install();
  vorn::fuzz::FuzzInput input(data, size);
  const std::string name = input.text();
  std::optional<vorn::Dictionary> attributes;
  if (input.byte() & 1)
    attributes = input.dictionary(2);
  const auto event = vorn::CustomEvent::create(name, attributes);
  sink->clear();
  if (!event)
    return 0;
  if (!allowed(event->name()) || event->attributes().has_value() != attributes.has_value())
    std::abort();
  for (const auto& [key, value] : event->attributes().value_or(vorn::Dictionary{})) {
    if (!allowed(key) || key.find('.') != std::string::npos)
      std::abort();
  }
  return 0;
}

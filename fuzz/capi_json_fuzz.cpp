// The JSON arguments of the C bridge (settings, event attributes, profile attributes, tags)
// as any host may pass them: every reader answers a value or none, and a module's settings
// that are not JSON are refused with an error status.
//
// The readers are internal to the library; their source is compiled into this target (see
// CMakeLists.txt). The settings go through the public vorn_config_add_module().
#include <cstdint>
#include <cstdlib>
#include <string>

#include "capi/JsonArguments.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/vorn.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto sink = vorn::testing::CaptureLogSink::install();
  // The bridge takes NUL-terminated text: whatever follows a NUL is not seen.
  const std::string text(reinterpret_cast<const char*>(data), size);
  const auto json = vorn::capi::parseJson(text.c_str());
  if (json)
    (void)vorn::capi::valueFrom(*json);
  const auto dictionary = vorn::capi::dictionaryFrom(text.c_str());
  const auto strings = vorn::capi::stringDictionaryFrom(text.c_str());
  const auto tags = vorn::capi::stringsFrom(text.c_str());
  if ((dictionary || strings || tags) && !json)
    std::abort();
  if (strings && !dictionary)
    std::abort();
  vorn_config* config = vorn_config_new();
  const vorn_status status = vorn_config_add_module(config, "cdp", text.c_str(), nullptr, nullptr);
  vorn_config_free(config);
  if (!json && status != VORN_ERROR_INVALID_SETTINGS)
    std::abort();
  sink->clear();
  return 0;
}

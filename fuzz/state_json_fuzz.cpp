// The SDK state snapshot of a module whose state properties are anything: nested values of
// every type with texts that need not be UTF-8. The snapshot is written the way the SDK
// writes it (malformed UTF-8 replaced), never throws, and is always JSON that reads back.
#include <cstdint>
#include <cstdlib>

#include <nlohmann/json.hpp>

#include "FuzzInput.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  vorn::fuzz::FuzzInput input(data, size);
  const vorn::Dictionary properties = input.dictionary();
  nlohmann::json entry = {{"name", "cdp"}, {"status", "operational"}};
  entry["properties"] = vorn::toJson(properties);
  const std::string text = entry.dump(2, ' ', false, nlohmann::json::error_handler_t::replace);
  const auto parsed = nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false);
  if (parsed.is_discarded() || !parsed.contains("properties"))
    std::abort();
  return 0;
}

// The 18-character form of any text. A form that is found is 18 letters and digits, is its
// own form, and names the same record as the text it came from.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "vorn/storage/crypto/EntityId.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto id = vorn::entityId18(text);
  if (!id)
    return 0;
  if (id->size() != 18 || vorn::entityId18(*id) != id || !vorn::isEqualToEntityId(text, *id))
    std::abort();
  return 0;
}

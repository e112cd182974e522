#include "core/Text.hpp"

#include <utf8proc.h>

namespace vorn::detail {
namespace {

template <class Map>
std::string mapCodePoints(std::string_view text, Map map) {
  std::string out;
  out.reserve(text.size());
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  std::size_t i = 0;
  while (i < text.size()) {
    utf8proc_int32_t cp = 0;
    const utf8proc_ssize_t length =
        utf8proc_iterate(bytes + i, static_cast<utf8proc_ssize_t>(text.size() - i), &cp);
    if (length <= 0) {
      out.push_back(text[i++]);
      continue;
    }
    utf8proc_uint8_t encoded[4];
    const utf8proc_ssize_t written = utf8proc_encode_char(map(cp), encoded);
    out.append(reinterpret_cast<const char*>(encoded), static_cast<std::size_t>(written));
    i += static_cast<std::size_t>(length);
  }
  return out;
}

}  // namespace

std::string lowercased(std::string_view text) {
  return mapCodePoints(text, utf8proc_tolower);
}

std::string uppercased(std::string_view text) {
  return mapCodePoints(text, utf8proc_toupper);
}

}  // namespace vorn::detail

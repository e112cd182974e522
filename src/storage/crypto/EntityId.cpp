#include "vorn/storage/crypto/EntityId.hpp"

#include <algorithm>

namespace vorn {
namespace {

constexpr std::string_view kCheckCharacters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ012345";

bool isAsciiAlphanumeric(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

}  // namespace

std::optional<std::string> entityId18(std::string_view text) {
  if ((text.size() != 15 && text.size() != 18) ||
      !std::all_of(text.begin(), text.end(), isAsciiAlphanumeric))
    return std::nullopt;
  std::string out(text);
  if (out.size() == 18)
    return out;
  for (std::size_t block = 0; block < 3; ++block) {
    unsigned index = 0;
    for (std::size_t i = 0; i < 5; ++i) {
      const char c = text[block * 5 + i];
      if (c >= 'A' && c <= 'Z')
        index |= 1u << i;
    }
    out.push_back(kCheckCharacters[index]);
  }
  return out;
}

bool isEqualToEntityId(std::string_view text, std::string_view other) {
  const auto mine = entityId18(text);
  const auto theirs = entityId18(other);
  return mine && theirs && *mine == *theirs;
}

}  // namespace vorn

#include "network/UrlText.hpp"

#include <algorithm>

namespace vorn::network {

namespace {

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isSchemeChar(char c) {
  return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
}
bool isSpaceOrControl(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte <= 0x20 || byte == 0x7F;
}

bool isScheme(std::string_view scheme) {
  return !scheme.empty() && isLetter(scheme.front()) && std::ranges::all_of(scheme, isSchemeChar);
}

// The host inside an authority "user@host:port": after the last "@", before the port; an
// IPv6 literal keeps its brackets.
std::string_view hostOf(std::string_view authority) {
  if (const auto at = authority.rfind('@'); at != std::string_view::npos)
    authority.remove_prefix(at + 1);
  if (authority.starts_with('[')) {
    const auto close = authority.find(']');
    return close == std::string_view::npos ? std::string_view{} : authority.substr(0, close + 1);
  }
  return authority.substr(0, authority.find(':'));
}

}  // namespace

bool isParsableUrl(std::string_view text) {
  if (std::ranges::any_of(text, isSpaceOrControl))
    return false;
  const auto separator = text.find("://");
  if (separator == std::string_view::npos || !isScheme(text.substr(0, separator)))
    return false;
  const std::string_view rest = text.substr(separator + 3);
  return !hostOf(rest.substr(0, rest.find_first_of("/?#"))).empty();
}

std::string joinUrl(std::string_view base, std::string_view path) {
  const auto firstKept = path.find_first_not_of('/');
  if (firstKept == std::string_view::npos)
    return std::string(base);
  const auto lastKept = base.find_last_not_of('/');
  const std::string_view head =
      lastKept == std::string_view::npos ? std::string_view{} : base.substr(0, lastKept + 1);
  std::string url;
  url.reserve(head.size() + 1 + path.size() - firstKept);
  url.append(head).append("/").append(path.substr(firstKept));
  return url;
}

}  // namespace vorn::network

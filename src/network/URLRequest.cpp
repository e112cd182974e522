#include "vorn/network/URLRequest.hpp"

#include <algorithm>
#include <utility>

namespace vorn {

namespace {

bool sameField(std::string_view a, std::string_view b) {
  const auto lower = [](unsigned char c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; };
  return std::ranges::equal(a, b, [&](char x, char y) { return lower(x) == lower(y); });
}

}  // namespace

URLRequest::URLRequest(std::string requestUrl, int policy, double timeoutSeconds)
    : url(std::move(requestUrl)), timeoutInterval(timeoutSeconds), cachePolicy(policy) {}

std::optional<std::string> URLRequest::value(std::string_view field) const {
  return headerValue(headers_, field);
}

void URLRequest::setValue(std::string value, std::string_view field) {
  const auto same = [&](const auto& entry) { return sameField(entry.first, field); };
  const auto found = std::ranges::find_if(headers_, same);
  if (found == headers_.end()) {
    headers_.emplace_back(std::string(field), std::move(value));
    return;
  }
  *found = {std::string(field), std::move(value)};
}

}  // namespace vorn

// The URL text rules of WrappedRequest::Builder (see WrappedRequest.hpp): which strings count
// as URLs, and how a base and a path are joined.
#pragma once

#include <string>
#include <string_view>

namespace vorn::network {

/// A scheme, "://", a non-empty host; no whitespace or control characters.
bool isParsableUrl(std::string_view text);

/// `base` and `path` with exactly one "/" between them; `base` itself for an empty path.
std::string joinUrl(std::string_view base, std::string_view path);

}  // namespace vorn::network

// WrappedRequest: a request the network manager can execute, and the builder that makes one.
//
// `name` is the request's logical name: the key of its rate limit, its Retry-After blocking and
// its in-flight de-duplication. `rateLimit` (seconds, 0 = none) is the spacing the SDK keeps
// after a successful call of that name. `tag` is a free label of the caller's.
//
// Builder rules:
// - build() needs method, url and name; otherwise it logs "build() called on invalid
//   WrappedRequest.Builder()" (category network, debug) and gives no request. The request it
//   makes has cache policy 1 (reload ignoring local cache) and the builder's timeout (30 s
//   unless set), the builder's headers and, when set, its body.
// - A URL string counts only when it parses: a scheme (a letter, then letters, digits, "+",
//   "-" or "."), then "://", then a non-empty host (after any "user@", before any ":port");
//   no whitespace or control character anywhere. Anything else leaves `url` absent (clearing
//   an earlier one), so build() refuses instead of sending somewhere unintended.
// - urlWithBase(base, path) puts exactly one "/" between the two: trailing "/" of the base and
//   leading "/" of the path are dropped first. A path that is empty (or only slashes) gives
//   the base as it was passed. The result is checked like any URL string.
// - Headers are kept by exact key; addOrReplaceHeader with a key already there replaces its
//   value. On the request they are set in key order with the request's case-insensitive
//   field semantics.
//
// Plain value types; a builder is used by one thread at a time.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Export.hpp"
#include "vorn/network/URLRequest.hpp"

namespace vorn {

struct VORN_API WrappedRequest {
  class Builder;

  URLRequest request;  // the manager sets the authorisation header on it
  std::string name;
  double rateLimit = 0;
  std::optional<std::string> tag;
};

class VORN_API WrappedRequest::Builder {
 public:
  static constexpr double kDefaultTimeout = 30.0;

  Builder& method(std::string method);
  Builder& url(std::string_view url);
  Builder& urlWithBase(std::string_view base, std::string_view path);
  Builder& addOrReplaceHeader(std::string key, std::string value);
  Builder& body(Bytes body);
  Builder& timeout(double seconds);
  Builder& rateLimit(double seconds);
  Builder& name(std::string name);
  Builder& tag(std::string tag);

  std::optional<WrappedRequest> build() const;

 private:
  std::optional<std::string> method_;
  std::optional<std::string> url_;
  std::map<std::string, std::string> headers_;
  std::optional<Bytes> body_;
  double timeout_ = kDefaultTimeout;
  double rateLimit_ = 0;
  std::optional<std::string> name_;
  std::optional<std::string> tag_;
};

}  // namespace vorn

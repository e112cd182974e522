// AuthHeader: the one header field an Authenticator supplies for authorised requests.
//
// Plain value type; there is deliberately no argument-less constructor, since a header
// without a name means nothing.
#pragma once

#include <string>
#include <utility>

namespace vorn {

struct AuthHeader {
  AuthHeader(std::string headerKey, std::string headerValue)
      : key(std::move(headerKey)), value(std::move(headerValue)) {}

  std::string key;    // the header field name
  std::string value;  // the header field value

  friend bool operator==(const AuthHeader&, const AuthHeader&) = default;
};

}  // namespace vorn

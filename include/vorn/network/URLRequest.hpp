// URLRequest: an HTTP request as the network layer describes it before it is sent.
//
// Header fields follow set-value-for-field semantics: setting a field replaces any field of
// the same name, compared without regard to ASCII case as HTTP does, and takes the new
// spelling; fields otherwise keep the order they were first set in.
//
// timeoutInterval is in seconds and is the only limit on the whole exchange. cachePolicy is
// kept as the platform's integer: kUseProtocolCachePolicy (0, the default) or
// kReloadIgnoringLocalCacheData (1); the transport keeps no cache, so it only travels along.
//
// Plain value type; not synchronised.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Export.hpp"
#include "vorn/platform/HttpTransport.hpp"

namespace vorn {

class VORN_API URLRequest {
 public:
  static constexpr int kUseProtocolCachePolicy = 0;
  static constexpr int kReloadIgnoringLocalCacheData = 1;
  static constexpr double kDefaultTimeoutInterval = 60.0;

  explicit URLRequest(std::string requestUrl, int policy = kUseProtocolCachePolicy,
                      double timeoutSeconds = kDefaultTimeoutInterval);

  /// The value of the field `field` (any case), or nothing.
  std::optional<std::string> value(std::string_view field) const;
  /// setValue(_:forHTTPHeaderField:): replaces the field `field` (any case) or appends it.
  void setValue(std::string value, std::string_view field);
  /// Every field, in the order described above.
  const HttpHeaders& allHTTPHeaderFields() const noexcept { return headers_; }

  std::string url;
  std::string httpMethod = "GET";
  std::optional<Bytes> httpBody;
  double timeoutInterval;
  int cachePolicy;

 private:
  HttpHeaders headers_;
};

}  // namespace vorn

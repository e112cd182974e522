#include "vorn/platform/HttpTransport.hpp"

#include <algorithm>

namespace vorn {
namespace {

bool equalsIgnoringAsciiCase(std::string_view a, std::string_view b) {
  auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                            [&](char x, char y) { return lower(x) == lower(y); });
}

class NoHttpTransport final : public HttpTransport {
 public:
  HttpResult perform(const HttpRequest&) override {
    return {.error = HttpError{HttpErrorCode::noTransport, "No HTTP transport is installed."}};
  }
};

}  // namespace

std::optional<std::string> headerValue(const HttpHeaders& headers, std::string_view name) {
  for (const auto& [field, value] : headers)
    if (equalsIgnoringAsciiCase(field, name))
      return value;
  return std::nullopt;
}

// Defined here so the vtable and type information live in the library, once.
HttpTransport::~HttpTransport() = default;

std::shared_ptr<HttpTransport> HttpTransport::none() {
  return std::make_shared<NoHttpTransport>();
}

}  // namespace vorn

#include "PushRequests.hpp"

#include <cctype>

namespace push::requests {
namespace {

vorn::Bytes jsonBytes(const nlohmann::json& json) {
  const std::string text = json.dump();
  return vorn::Bytes(text.begin(), text.end());
}

// Message ids travel in the path: everything but the unreserved characters is escaped.
std::string pathSegment(const std::string& text) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string escaped;
  for (const unsigned char c : text) {
    if (std::isalnum(c) || c == '-' || c == '.' || c == '_' || c == '~') {
      escaped.push_back(static_cast<char>(c));
    } else {
      escaped.push_back('%');
      escaped.push_back(kDigits[c >> 4]);
      escaped.push_back(kDigits[c & 0x0F]);
    }
  }
  return escaped;
}

vorn::WrappedRequest::Builder jsonPost(const std::string& endpoint, std::string_view path,
                                       const nlohmann::json& body) {
  vorn::WrappedRequest::Builder builder;
  builder.method("POST")
      .urlWithBase(endpoint, path)
      .addOrReplaceHeader("Content-Type", "application/json")
      .body(jsonBytes(body));
  return builder;
}

}  // namespace

std::optional<vorn::WrappedRequest> token(const std::string& endpoint,
                                          const std::string& registrationId) {
  return jsonPost(endpoint, "/v1/token", {{"registrationId", registrationId}})
      .name("push_token")
      .build();
}

std::optional<vorn::WrappedRequest> registration(const std::string& endpoint,
                                                 const vorn::Dictionary& body, double rateLimit) {
  return jsonPost(endpoint, "/v1/registration", vorn::toJson(body))
      .rateLimit(rateLimit)
      .name("push_registration")
      .build();
}

std::optional<vorn::WrappedRequest> inbox(const std::string& endpoint) {
  return vorn::WrappedRequest::Builder()
      .method("GET")
      .urlWithBase(endpoint, "/v1/inbox")
      .name("push_inbox")
      .build();
}

std::optional<vorn::WrappedRequest> markRead(const std::string& endpoint,
                                             const std::string& messageId) {
  return vorn::WrappedRequest::Builder()
      .method("POST")
      .urlWithBase(endpoint, "/v1/inbox/" + pathSegment(messageId) + "/read")
      .name("push_inbox_read")
      .build();
}

std::optional<vorn::WrappedRequest> markDeleted(const std::string& endpoint,
                                                const std::string& messageId) {
  return vorn::WrappedRequest::Builder()
      .method("DELETE")
      .urlWithBase(endpoint, "/v1/inbox/" + pathSegment(messageId))
      .name("push_inbox_delete")
      .build();
}

std::optional<nlohmann::json> jsonAnswer(const vorn::CompletedCall& call) {
  const vorn::WrappedResponse& response = call.wrappedResponse;
  if (!response.isSuccess() || !response.data)
    return std::nullopt;
  auto json = nlohmann::json::parse(response.data->begin(), response.data->end(), nullptr, false);
  if (json.is_discarded())
    return std::nullopt;
  return json;
}

std::string outcome(const vorn::CompletedCall& call) {
  const vorn::WrappedResponse& response = call.wrappedResponse;
  if (response.response)
    return "HTTP " + std::to_string(response.response->statusCode);
  return response.error ? response.error->message() : "no response";
}

}  // namespace push::requests

#include "BatchUpload.hpp"

#include <algorithm>
#include <cctype>

#include "vorn/network/WrappedRequest.hpp"

namespace cdp {
namespace {

constexpr std::int64_t kMaxRetryAfterSeconds = 86400;

std::optional<std::chrono::seconds> retryAfter(const vorn::WrappedResponse& response) {
  if (!response.response)
    return std::nullopt;
  const auto text = vorn::headerValue(response.response->headers, "Retry-After");
  if (!text || text->empty() || text->size() > 9 ||
      !std::all_of(text->begin(), text->end(), [](unsigned char c) { return std::isdigit(c); }))
    return std::nullopt;
  const std::int64_t seconds = std::stoll(*text);
  if (seconds <= 0)
    return std::nullopt;
  return std::chrono::seconds(std::min(seconds, kMaxRetryAfterSeconds));
}

std::string describe(const vorn::WrappedResponse& response) {
  if (response.response)
    return "HTTP " + std::to_string(response.response->statusCode);
  if (response.error)
    return response.error->message();
  return "no response";
}

}  // namespace

std::string batchBody(const std::vector<std::string>& records,
                      const std::optional<nlohmann::json>& location) {
  std::string body = "{\"events\":[";
  for (std::size_t i = 0; i < records.size(); ++i) {
    if (i > 0)
      body += ',';
    body += records[i];
  }
  body += ']';
  if (location)
    body += ",\"location\":" + location->dump();
  body += '}';
  return body;
}

UploadOutcome postBatch(vorn::NetworkManager& network, const CdpSettings& settings,
                        const std::vector<std::string>& records,
                        const std::optional<nlohmann::json>& location) {
  const std::string body = batchBody(records, location);
  auto request = vorn::WrappedRequest::Builder()
                     .method("POST")
                     .urlWithBase(settings.endpoint, kEventsPath)
                     .addOrReplaceHeader("Content-Type", "application/json")
                     .body(vorn::Bytes(body.begin(), body.end()))
                     .timeout(kUploadTimeoutSeconds)
                     .rateLimit(settings.rateLimitSeconds)
                     .name(std::string(kEventsRequestName))
                     .build();
  if (!request)
    return {false, std::nullopt, "invalid endpoint"};
  const auto call = network.executeSync(std::move(*request));
  const auto& response = call.wrappedResponse;
  return {response.isSuccess(), retryAfter(response), describe(response)};
}

}  // namespace cdp

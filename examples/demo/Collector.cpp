#include "Collector.hpp"

#include "vorn/platform/HttpTransport.hpp"

namespace demo {

nlohmann::json collectorCall(const std::string& baseUrl, const std::string& method,
                             const std::string& path) {
  static const auto transport = vorn::HttpTransport::curl();
  vorn::HttpRequest request;
  request.method = method;
  request.url = baseUrl + path;
  request.timeout = std::chrono::seconds(5);
  if (method != "GET")
    request.body = {'{', '}'};
  // A connection kept for the next call would hold the collector's shutdown for its whole
  // keep-alive time.
  request.headers = {{"Content-Type", "application/json"}, {"Connection", "close"}};
  const vorn::HttpResult result = transport->perform(request);
  if (!result.response || !result.data)
    return nullptr;
  return nlohmann::json::parse(result.data->begin(), result.data->end(), nullptr, false);
}

Collector::Collector(const std::filesystem::path& database) {
  process_ = std::make_unique<Process>(
      VORN_COLLECTOR_PATH, std::vector<std::string>{"--port", "0", "--db", database.string()});
  constexpr std::string_view kListening = "listening on ";
  if (auto line = process_->waitForLine(std::string(kListening), std::chrono::seconds(10)))
    url_ = line->substr(line->find(kListening) + kListening.size());
}

Collector::~Collector() {
  if (!url_.empty())
    collectorCall(url_, "POST", "/control/shutdown");
  process_->wait();
}

}  // namespace demo

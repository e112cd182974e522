#include "Collector.hpp"

namespace vorn::collector {
namespace {

using nlohmann::json;

void reply(httplib::Response& response, int status, const json& body) {
  response.status = status;
  response.set_content(body.dump(), "application/json");
}

bool recorded(const httplib::Request& request) {
  return request.path.rfind("/control/", 0) != 0 && request.path != "/summary";
}

}  // namespace

Collector::Collector(CollectorStore& store) : store_(store) {
  server_.set_tcp_nodelay(true);
  server_.set_keep_alive_max_count(100000);
  server_.set_post_routing_handler(
      [this](const httplib::Request& request, httplib::Response& response) {
        if (recorded(request))
          store_.recordRequest(request.method, request.path, response.status, request.body);
      });
  routeApi();
  routeControl();
}

int Collector::bind(int port) {
  return port == 0 ? server_.bind_to_any_port("127.0.0.1")
                   : (server_.bind_to_port("127.0.0.1", port) ? port : -1);
}

void Collector::serve() {
  server_.listen_after_bind();
}

bool Collector::tokenValid(const httplib::Request& request) {
  const std::string header = request.get_header_value("Authorization");
  constexpr std::string_view kBearer = "Bearer ";
  return header.rfind(kBearer, 0) == 0 && validTokens_.count(header.substr(kBearer.size())) > 0;
}

bool Collector::injectFault(const httplib::Request& request, httplib::Response& response,
                            bool needsToken) {
  std::lock_guard lock(mutex_);
  if (auto it = retryAfter_.find(request.path); it != retryAfter_.end()) {
    response.set_header("Retry-After", std::to_string(it->second));
    reply(response, 503, {{"error", "try again later"}});
    retryAfter_.erase(it);
    return true;
  }
  if (needsToken && !tokenValid(request)) {
    reply(response, 401, {{"error", "token missing or expired"}});
    return true;
  }
  return false;
}

void Collector::routeApi() {
  server_.Post("/v1/token", [this](const httplib::Request& request, httplib::Response& response) {
    if (injectFault(request, response, false))
      return;
    std::lock_guard lock(mutex_);
    const std::string token = "tok-" + std::to_string(++issued_);
    validTokens_.insert(token);
    reply(response, 200, {{"token", token}, {"expiresIn", 3600}});
  });
  server_.Post("/v1/events", [this](const httplib::Request& request, httplib::Response& response) {
    if (injectFault(request, response, false))
      return;
    const json batch = json::parse(request.body, nullptr, false);
    if (!batch.is_object() || !batch.contains("events") || !batch["events"].is_array())
      return reply(response, 400, {{"error", "expected {\"events\": [...]}"}});
    for (const json& event : batch["events"])
      store_.recordEvent(event.value("id", ""), event.value("name", ""), event.dump());
    reply(response, 202, {{"accepted", batch["events"].size()}});
  });
  server_.Post("/v1/registration",
               [this](const httplib::Request& request, httplib::Response& response) {
                 if (injectFault(request, response, true))
                   return;
                 store_.recordRegistration(request.body);
                 reply(response, 200, {{"registered", true}});
               });
  server_.Get("/v1/inbox", [this](const httplib::Request& request, httplib::Response& response) {
    if (!injectFault(request, response, true))
      reply(response, 200, {{"messages", store_.inbox()}});
  });
  auto update = [this](bool deleted) {
    return [this, deleted](const httplib::Request& request, httplib::Response& response) {
      if (injectFault(request, response, true))
        return;
      const bool found = store_.updateMessage(request.matches[1].str(), deleted);
      reply(response, found ? 200 : 404, {{"updated", found}});
    };
  };
  server_.Post(R"(/v1/inbox/([^/]+)/read)", update(false));
  server_.Delete(R"(/v1/inbox/([^/]+))", update(true));
}

void Collector::routeControl() {
  server_.Get("/summary", [this](const httplib::Request&, httplib::Response& response) {
    reply(response, 200, store_.summary());
  });
  server_.Post("/control/expire-tokens",
               [this](const httplib::Request&, httplib::Response& response) {
                 std::lock_guard lock(mutex_);
                 validTokens_.clear();
                 reply(response, 200, {{"expired", true}});
               });
  server_.Post("/control/retry-after",
               [this](const httplib::Request& request, httplib::Response& response) {
                 const std::string path = request.get_param_value("path");
                 const int seconds = std::atoi(request.get_param_value("seconds").c_str());
                 if (path.empty() || seconds <= 0)
                   return reply(response, 400, {{"error", "need path and seconds > 0"}});
                 std::lock_guard lock(mutex_);
                 retryAfter_[path] = seconds;
                 reply(response, 200, {{"path", path}, {"seconds", seconds}});
               });
  server_.Post("/control/shutdown", [this](const httplib::Request&, httplib::Response& response) {
    reply(response, 200, {{"stopping", true}});
    std::thread([this] { server_.stop(); }).detach();
  });
}

}  // namespace vorn::collector

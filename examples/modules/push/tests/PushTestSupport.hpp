// What the push module tests share: a loopback back end with the module's four endpoints
// (token, registration, inbox and its marks) that records what it receives, and a fixture
// that starts modules through the registered module class, as the core does.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "push/PushModule.hpp"
#include "support/LoopbackServer.hpp"
#include "vorn/core/ModuleRegistry.hpp"
#include "vorn/facades/PushInterface.hpp"
#include "vorn/platform/Platform.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/Wait.hpp"

namespace push::test {

/// One request the back end received.
struct Received {
  std::string method;
  std::string path;
  std::string authorization;
  nlohmann::json body;
};

class Backend {
 public:
  Backend() {
    auto& http = server_.server();
    // One request per connection: a connection kept alive by a transport that outlives the
    // test (the process-wide services keep the Platform they started with) would hold stop()
    // for the whole keep-alive time-out.
    http.set_keep_alive_max_count(1);
    http.Post("/v1/token", [this](const auto& req, auto& res) { token(req, res); });
    http.Post("/v1/registration", [this](const auto& req, auto& res) { registration(req, res); });
    http.Get("/v1/inbox", [this](const auto& req, auto& res) { inbox(req, res); });
    http.Post(R"(/v1/inbox/([^/]+)/read)", [this](const auto& req, auto& res) { mark(req, res); });
    http.Delete(R"(/v1/inbox/([^/]+))", [this](const auto& req, auto& res) { mark(req, res); });
    server_.start();
  }
  ~Backend() {
    open();
    server_.stop();
  }

  std::string url() const { return server_.url(); }

  std::vector<Received> received(const std::string& path) const {
    std::lock_guard lock(mutex_);
    std::vector<Received> matching;
    for (const Received& r : received_)
      if (r.path == path)
        matching.push_back(r);
    return matching;
  }
  std::size_t count(const std::string& path) const { return received(path).size(); }
  bool waitForCount(const std::string& path, std::size_t n) const {
    return vorn::testing::waitUntil([&] { return count(path) >= n; });
  }

  /// Every token issued so far stops being valid.
  void expireTokens() {
    std::lock_guard lock(mutex_);
    validTokens_.clear();
  }
  /// Registrations (and inbox fetches) are answered with `status` from now on; 0 restores.
  void failRegistrationsWith(int status) { registrationStatus_ = status; }
  void failInboxWith(int status) { inboxStatus_ = status; }
  void setInbox(nlohmann::json messages) {
    std::lock_guard lock(mutex_);
    inbox_ = std::move(messages);
  }
  /// Holds registrations inside the handler until open().
  void close() {
    std::lock_guard lock(mutex_);
    closed_ = true;
  }
  void open() {
    std::lock_guard lock(mutex_);
    closed_ = false;
    opened_.notify_all();
  }
  /// Registrations that are being held.
  int held() const { return held_.load(); }

 private:
  void record(const httplib::Request& req) {
    nlohmann::json body = nlohmann::json::parse(req.body, nullptr, false);
    std::lock_guard lock(mutex_);
    received_.push_back({req.method, req.path, req.get_header_value("Authorization"), body});
  }
  bool authorized(const httplib::Request& req, httplib::Response& res) {
    std::lock_guard lock(mutex_);
    if (validTokens_.count(req.get_header_value("Authorization")))
      return true;
    res.status = 401;
    return false;
  }
  void token(const httplib::Request& req, httplib::Response& res) {
    record(req);
    std::lock_guard lock(mutex_);
    const std::string token = "secret-token-" + std::to_string(++issued_);
    validTokens_.insert("Bearer " + token);
    res.set_content(nlohmann::json{{"token", token}, {"expiresIn", 3600}}.dump(),
                    "application/json");
  }
  void registration(const httplib::Request& req, httplib::Response& res) {
    record(req);
    {
      std::unique_lock lock(mutex_);
      ++held_;
      opened_.wait(lock, [this] { return !closed_; });
      --held_;
    }
    if (registrationStatus_ != 0) {
      res.status = registrationStatus_;
      return;
    }
    if (authorized(req, res))
      res.set_content("{}", "application/json");
  }
  void inbox(const httplib::Request& req, httplib::Response& res) {
    record(req);
    if (inboxStatus_ != 0) {
      res.status = inboxStatus_;
      return;
    }
    if (!authorized(req, res))
      return;
    std::lock_guard lock(mutex_);
    res.set_content(nlohmann::json{{"messages", inbox_}}.dump(), "application/json");
  }
  void mark(const httplib::Request& req, httplib::Response& res) {
    record(req);
    if (authorized(req, res))
      res.set_content("{}", "application/json");
  }

  mutable std::mutex mutex_;
  std::condition_variable opened_;
  std::vector<Received> received_;                  // guarded by mutex_
  std::set<std::string> validTokens_;               // guarded by mutex_
  nlohmann::json inbox_ = nlohmann::json::array();  // guarded by mutex_
  int issued_ = 0;                                  // guarded by mutex_
  bool closed_ = false;                             // guarded by mutex_
  std::atomic<int> held_{0};
  std::atomic<int> registrationStatus_{0};
  std::atomic<int> inboxStatus_{0};
  vorn::test::LoopbackServer server_;
};

/// A started module: the core's view of it and the app's.
struct Started {
  std::shared_ptr<vorn::VORNModule> module;
  std::shared_ptr<vorn::PushInterface> push;
};

class PushModuleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    vorn::Platform platform = vorn::Platform::ephemeral();
    platform.http = vorn::HttpTransport::curl();
    platform.app.appVersion = "1.0";
    vorn::Platform::install(platform);
    sink = vorn::testing::CaptureLogSink::install(vorn::LogLevel::debug);
  }
  // Lets the modules and their transports go before the server stops, so that no kept-alive
  // connection holds the server's threads.
  void TearDown() override {
    std::vector<std::weak_ptr<vorn::VORNModule>> gone;
    for (Started& s : started) {
      if (s.module)
        s.module->tearDown();
      gone.push_back(s.module);
    }
    started.clear();
    EXPECT_TRUE(vorn::testing::waitUntil([&] {
      return std::all_of(gone.begin(), gone.end(), [](const auto& m) { return m.expired(); });
    }));
    vorn::Platform::install(vorn::Platform::ephemeral());
  }

  /// Starts a module through the registered class, with fresh components.
  Started start(double rateLimit = 0) {
    auto config = std::make_shared<const PushModuleConfig>(
        "APP1", PushSettings{.endpoint = backend.url(), .registrationRateLimitSeconds = rateLimit});
    const std::optional<vorn::ModuleClass> moduleClass =
        vorn::ModuleRegistry::lookup(kModuleDescription);
    if (!moduleClass)
      return {};
    Started s;
    s.module = moduleClass->initModule(config, vorn::VORNSdkComponents::create(*config));
    s.push = std::dynamic_pointer_cast<vorn::PushInterface>(s.module);
    started.push_back(s);
    return s;
  }

  /// The module's state property `key`, as an integer (booleans as 0 or 1); -1 when absent.
  static std::int64_t property(const Started& s, const std::string& key) {
    const vorn::Dictionary properties = s.module->stateProperties();
    const auto it = properties.find(key);
    if (it == properties.end())
      return -1;
    if (const bool* b = it->second.get<bool>())
      return *b ? 1 : 0;
    const std::int64_t* i = it->second.get<std::int64_t>();
    return i ? *i : -1;
  }
  static bool waitForProperty(const Started& s, const std::string& key, std::int64_t value) {
    return vorn::testing::waitUntil([&] { return property(s, key) == value; });
  }

  Backend backend;
  std::shared_ptr<vorn::testing::CaptureLogSink> sink;
  std::vector<Started> started;
};

}  // namespace push::test

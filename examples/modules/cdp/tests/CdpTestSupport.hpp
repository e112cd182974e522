// What the cdp module's tests share: a collector for /v1/events on a real loopback server, and
// a fixture that starts modules the way the core does (registry lookup, components of the
// configuration) on an in-memory Platform that talks HTTP through libcurl.
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "cdp/CdpModule.hpp"
#include "support/LoopbackServer.hpp"
#include "vorn/core/ModuleRegistry.hpp"
#include "vorn/core/VORNSdkComponents.hpp"
#include "vorn/events/CustomEvent.hpp"
#include "vorn/facades/CdpInterface.hpp"
#include "vorn/messaging/Message.hpp"
#include "vorn/platform/Platform.hpp"
#include "vorn/testing/TemporaryDirectory.hpp"
#include "vorn/testing/Wait.hpp"

namespace cdp::test {

/// Accepts event batches with 202 like the demo's collector, remembering every body. It can
/// answer the next request with a fault, or hold requests until released.
class EventsCollector {
 public:
  EventsCollector() {
    server_.server().Post("/v1/events",
                          [this](const httplib::Request& request, httplib::Response& response) {
                            handle(request, response);
                          });
    server_.start();
  }
  ~EventsCollector() {
    release();
    server_.stop();
  }

  std::string url() const { return server_.url(); }

  /// The next request gets `status` with this Retry-After.
  void failNext(int status, std::string retryAfter) {
    std::lock_guard lock(mutex_);
    fault_ = {status, std::move(retryAfter)};
  }
  /// Requests wait in the handler until release().
  void hold() {
    std::lock_guard lock(mutex_);
    holding_ = true;
  }
  void release() {
    std::lock_guard lock(mutex_);
    holding_ = false;
    changed_.notify_all();
  }
  bool waitForHeldRequest() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, vorn::testing::kDeadline, [this] { return held_ > 0; });
  }

  int attempts() const {
    std::lock_guard lock(mutex_);
    return attempts_;
  }
  std::vector<nlohmann::json> batches() const {
    std::lock_guard lock(mutex_);
    return batches_;
  }
  /// When each accepted batch arrived.
  std::vector<std::chrono::steady_clock::time_point> arrivals() const {
    std::lock_guard lock(mutex_);
    return arrivals_;
  }
  /// The ids of every accepted event, in arrival order.
  std::vector<std::string> acceptedIds() const {
    std::vector<std::string> ids;
    for (const auto& batch : batches()) {
      for (const auto& event : batch["events"])
        ids.push_back(event["id"].get<std::string>());
    }
    return ids;
  }
  bool waitForAccepted(std::size_t count) const {
    return vorn::testing::waitUntil([&] { return acceptedIds().size() >= count; });
  }

 private:
  void handle(const httplib::Request& request, httplib::Response& response) {
    // A kept-alive connection would hold the server's stop for its keep-alive time-out.
    response.set_header("Connection", "close");
    std::unique_lock lock(mutex_);
    ++attempts_;
    if (holding_) {
      ++held_;
      changed_.notify_all();
      changed_.wait_for(lock, vorn::testing::kDeadline, [this] { return !holding_; });
    }
    if (fault_) {
      response.status = fault_->first;
      response.set_header("Retry-After", fault_->second);
      fault_.reset();
      return;
    }
    batches_.push_back(nlohmann::json::parse(request.body));
    arrivals_.push_back(std::chrono::steady_clock::now());
    response.status = 202;
    response.set_content("{\"accepted\":1}", "application/json");
  }

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  int attempts_ = 0;                                             // guarded by mutex_
  int held_ = 0;                                                 // guarded by mutex_
  bool holding_ = false;                                         // guarded by mutex_
  std::optional<std::pair<int, std::string>> fault_;             // guarded by mutex_
  std::vector<nlohmann::json> batches_;                          // guarded by mutex_
  std::vector<std::chrono::steady_clock::time_point> arrivals_;  // guarded by mutex_
  vorn::test::LoopbackServer server_;  // last: stops before the state above goes
};

class CdpModuleTest : public ::testing::Test {
 protected:
  CdpModuleTest() {
    auto platform = vorn::Platform::ephemeral();
    platform.http = vorn::HttpTransport::curl();
    vorn::Platform::install(platform);
  }

  CdpSettings settings(std::size_t batchSize, double flushInterval, double rateLimit = 0) const {
    return {collector.url(), batchSize, flushInterval, rateLimit, directory.path()};
  }

  /// A module started by the registered class, as the core starts one.
  std::shared_ptr<vorn::VORNModule> start(CdpSettings settings) {
    config = std::make_shared<CdpModuleConfig>("cdp-test-app", std::move(settings));
    components = vorn::VORNSdkComponents::create(*config);
    const auto moduleClass = vorn::ModuleRegistry::lookup(kModuleDescription);
    return moduleClass ? moduleClass->initModule(config, components) : nullptr;
  }

  static std::shared_ptr<vorn::CdpInterface> cdpOf(const std::shared_ptr<vorn::VORNModule>& m) {
    return std::dynamic_pointer_cast<vorn::CdpInterface>(m);
  }

  /// Delivers `event` as the bus does, and answers its id.
  static std::string deliver(vorn::VORNModule& module, std::shared_ptr<const vorn::Event> event) {
    std::string id = event->id();
    module.asSubscriber()->receive(vorn::Message::makeFrom(vorn::MessageProducer::sdk, event));
    return id;
  }
  static std::string deliver(vorn::VORNModule& module, const std::string& name) {
    return deliver(module, vorn::CustomEvent::create(name, vorn::Dictionary{{"step", 1}}));
  }

  static vorn::Value property(const vorn::VORNModule& module, const std::string& key) {
    return module.stateProperties().at(key);
  }
  static bool waitForProperty(const vorn::VORNModule& module, const std::string& key,
                              std::int64_t value) {
    return vorn::testing::waitUntil([&] { return property(module, key) == vorn::Value(value); });
  }

  std::filesystem::path eventsFile() const {
    return directory.path() / "cdp" /
           components->storageManager()->getFilenameForModuleInstallation("events");
  }

  vorn::testing::TemporaryDirectory directory;
  EventsCollector collector;
  std::shared_ptr<const CdpModuleConfig> config;
  std::shared_ptr<vorn::VORNSdkComponents> components;
};

}  // namespace cdp::test

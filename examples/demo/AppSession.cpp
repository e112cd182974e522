#include "AppSession.hpp"

#include <atomic>
#include <cstdio>

#include "push/PushModule.hpp"
#include "vorn/core/ConfigBuilder.hpp"
#include "vorn/identity/IDENTITY.hpp"
#include "vorn/platform/Platform.hpp"
#include "vorn/sdk/VORNSdk.hpp"

namespace demo {
namespace {

constexpr const char* kAppId = "demo-app-0001";

nlohmann::json moduleProperties(const std::string& module) {
  const auto state = nlohmann::json::parse(vorn::VORNSdk::state(), nullptr, false);
  if (state.is_discarded())
    return nlohmann::json::object();
  return state["modules"][module].value("properties", nlohmann::json::object());
}

}  // namespace

AppSession::AppSession(const AppOptions& options, std::string appVersion)
    : options_(options), sink_(std::make_shared<DemoSink>(options.logTap)) {
  vorn::Platform platform = vorn::Platform::defaultPlatform(options.dataDirectory / "sdk");
  platform.app.appVersion = std::move(appVersion);
  platform.app.appName = "VornDemo";
  vorn::Platform::install(platform);
  vorn::VORNSdk::setLogger(vorn::LogLevel::debug, sink_);
}

cdp::CdpSettings AppSession::cdpSettings() const {
  cdp::CdpSettings settings;
  settings.endpoint = options_.collectorUrl;
  settings.batchSize = 50;
  settings.flushIntervalSeconds = 1;
  settings.rateLimitSeconds = 0;
  settings.dataDirectory = options_.dataDirectory / "sdk";
  return settings;
}

bool AppSession::startUp(cdp::CdpSettings cdpSettings) {
  struct Outcomes {
    std::atomic<int> answered{0};
    std::atomic<int> succeeded{0};
  };
  auto outcomes = std::make_shared<Outcomes>();
  auto record = [outcomes](vorn::OperationResult result) {
    outcomes->succeeded += result == vorn::OperationResult::success ? 1 : 0;
    ++outcomes->answered;
  };
  push::PushSettings pushSettings;
  pushSettings.endpoint = options_.collectorUrl;
  vorn::VORNSdk::initializeSdk(
      vorn::ConfigBuilder()
          .setCdp(std::make_shared<cdp::CdpModuleConfig>(kAppId, std::move(cdpSettings)), record)
          .setPush(std::make_shared<push::PushModuleConfig>(kAppId, pushSettings), record)
          .build());
  return checks_.waitFor([&] { return outcomes->answered == 2; }, "both modules answered") &&
         checks_.expect(outcomes->succeeded == 2, "both modules started");
}

void AppSession::shutDown() {
  vorn::VORNSdk::tearDownModule(vorn::ModuleName::cdp);
  vorn::VORNSdk::tearDownModule(vorn::ModuleName::push);
  // Teardown runs on the modules' queues; the demo times it to its end.
  checks_.waitFor(
      [&] { return sink_->saw("Module torn down.") && sink_->saw("Push module torn down."); },
      "both modules torn down");
}

std::int64_t AppSession::counter(const std::string& module, const std::string& key) {
  const auto properties = moduleProperties(module);
  return properties.contains(key) && properties[key].is_number_integer()
             ? properties[key].get<std::int64_t>()
             : -1;
}

bool AppSession::flag(const std::string& module, const std::string& key) {
  const auto properties = moduleProperties(module);
  return properties.contains(key) && properties[key].is_boolean() && properties[key].get<bool>();
}

void AppSession::printStateAndIdentity() const {
  std::printf("  state():\n%s\n", vorn::VORNSdk::state().c_str());
  std::printf("  IDENTITY.toJson():\n%s\n", vorn::IDENTITY::shared()->toJson().c_str());
}

void AppSession::section(const std::string& title) {
  std::printf("\n-- %s\n", title.c_str());
  std::fflush(stdout);
}

}  // namespace demo

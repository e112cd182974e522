// Helpers for the start-up tests: fake module classes with versions the facades accept,
// module configurations, callbacks that record what they hear, and a fixture with an
// in-memory platform, a capture sink and the fixed waits compressed tenfold.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "vorn/core/ConfigBuilder.hpp"
#include "vorn/sdk/VORNSdk.hpp"
#include "vorn/testing/CaptureLogSink.hpp"
#include "vorn/testing/FakeModule.hpp"
#include "vorn/testing/FakeModuleConfig.hpp"
#include "vorn/testing/PlatformInstall.hpp"
#include "vorn/testing/TimeScale.hpp"
#include "vorn/testing/Wait.hpp"

namespace vorn::sdktest {

inline constexpr const char* kPushVersion = "8.1.0";
inline constexpr const char* kCdpVersion = "2.0.2";

/// The application id is also a stored property, so configurations of different ids differ.
inline std::shared_ptr<const ModuleConfig> moduleConfig(ModuleName name,
                                                        std::string appId = "APP1") {
  return std::make_shared<testing::FakeModuleConfig>(
      name, appId, std::vector<ModuleConfig::Property>{{"appId", Value(appId)}});
}

/// Registers fake classes that start at once, at versions the facades accept.
inline void registerBothModules(testing::FakeModuleSettings push = {.version = kPushVersion},
                                testing::FakeModuleSettings cdp = {.version = kCdpVersion}) {
  testing::FakeModule::registerClass(ModuleName::push, std::move(push));
  testing::FakeModule::registerClass(ModuleName::cdp, std::move(cdp));
}

/// Records every outcome its callbacks hear, from any thread.
class Outcomes {
 public:
  CompletionCallback callback(std::string tag) {
    return [this, tag](OperationResult result) {
      std::lock_guard lock(mutex_);
      heard_.push_back(tag + ":" + std::string(rawValue(result)));
    };
  }
  std::vector<std::string> heard() const {
    std::lock_guard lock(mutex_);
    return heard_;
  }
  bool waitFor(std::size_t count) const {
    return testing::waitUntil([&] { return heard().size() >= count; });
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> heard_;  // guarded by mutex_
};

class SdkTest : public ::testing::Test {
 protected:
  bool waitForState(InitializationState state) {
    return testing::waitUntil([&] { return VORNSdk::initializationState() == state; });
  }
  /// Starts `config` and waits until the start-up ended READY.
  bool startReady(Config config) {
    const std::size_t before = sink->count("SDK initializing with version: " + version);
    VORNSdk::initializeSdk(std::move(config));
    return sink->waitFor("SDK initializing with version: " + version, before + 1) &&
           waitForState(InitializationState::READY);
  }
  /// Starts `config` and waits for the start-up's time-out teardown.
  bool startTimingOut(Config config) {
    const std::size_t before = sink->count("Module initialization timeout exceeded");
    VORNSdk::initializeSdk(std::move(config));
    return sink->waitFor("Module initialization timeout exceeded", before + 1) &&
           waitForState(InitializationState::NONE);
  }

  Platform platform = testing::installEphemeralPlatform();
  // 5 s wait: 500 ms, long enough for a sanitized build to start a module; 15 s time-out: 1.5 s
  testing::ScopedTimeScale fast{0.1};
  std::shared_ptr<testing::CaptureLogSink> sink = testing::CaptureLogSink::install();
  const std::string version = VORNSdk::sdkVersion();
  Outcomes outcomes;
};

}  // namespace vorn::sdktest

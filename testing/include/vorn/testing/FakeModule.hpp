// A feature module for tests, registered under the real class names ("VORNSdkPushModule",
// "Cdp.CdpModule") so that the core finds it as it would find the real one.
//
// registerClass() puts a fake class into ModuleRegistry with the given settings: the version
// it reports, whether its factory starts a module or gives null, how long the factory takes
// (compressed by ScopedTimeScale, like the core's own waits), whether the module listens on
// the event bus, its identity text and its state properties. Every module the factory starts
// is kept, in order, for started().
//
// A started module records the configuration and components it was started with, every
// message it receives and every tearDown().
//
// Thread safety: every member may be called from any thread; receive() may overlap.
#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "vorn/base/ModuleName.hpp"
#include "vorn/base/Value.hpp"
#include "vorn/core/ModuleConfig.hpp"
#include "vorn/core/VORNModule.hpp"
#include "vorn/core/VORNSdkComponents.hpp"
#include "vorn/messaging/Message.hpp"
#include "vorn/messaging/Subscriber.hpp"

namespace vorn::testing {

struct FakeModuleSettings {
  std::string version = "1.0.0";
  /// False: the factory gives null, as a module that could not start.
  bool startsModule = true;
  /// How long the factory blocks before it answers.
  std::chrono::milliseconds initDelay{0};
  /// False: asSubscriber() gives null.
  bool subscribes = true;
  std::string identity;
  Dictionary stateProperties;
};

class FakeModule : public VORNModule,
                   public Subscriber,
                   public std::enable_shared_from_this<FakeModule> {
 public:
  /// Registers the fake class of `name`, replacing whatever was registered for it.
  static void registerClass(ModuleName name, FakeModuleSettings settings = {});
  /// The modules the fake class of `name` started so far, oldest first.
  static std::vector<std::shared_ptr<FakeModule>> started(ModuleName name);

  FakeModule(ModuleName name, FakeModuleSettings settings,
             std::shared_ptr<const ModuleConfig> config,
             std::shared_ptr<VORNSdkComponents> components);

  void tearDown() override;
  Dictionary stateProperties() const override { return settings_.stateProperties; }
  std::shared_ptr<Subscriber> asSubscriber() override;

  ModuleName name() const override { return name_; }
  void receive(std::shared_ptr<const Message> message) override;

  const std::string& identity() const noexcept { return settings_.identity; }
  const std::string& version() const noexcept { return settings_.version; }
  const std::shared_ptr<const ModuleConfig>& config() const noexcept { return config_; }
  const std::shared_ptr<VORNSdkComponents>& components() const noexcept { return components_; }

  std::vector<std::shared_ptr<const Message>> received() const;
  /// Waits until at least `count` messages arrived; false on time-out.
  bool waitForMessages(std::size_t count,
                       std::chrono::nanoseconds timeout = std::chrono::seconds(10)) const;
  int tearDownCount() const;

 private:
  const ModuleName name_;
  const FakeModuleSettings settings_;
  const std::shared_ptr<const ModuleConfig> config_;
  const std::shared_ptr<VORNSdkComponents> components_;
  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  std::vector<std::shared_ptr<const Message>> received_;  // guarded by mutex_
  int tearDowns_ = 0;                                     // guarded by mutex_
};

}  // namespace vorn::testing

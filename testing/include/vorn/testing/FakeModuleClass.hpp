// FakeModuleClass<Fake>: registers a fake module class whose factory starts `Fake` modules,
// and keeps every module it started, for fakes that implement a module interface on top of
// FakeModule (FakePushModule, FakeCdpModule).
//
// The factory honours FakeModuleSettings as FakeModule's own does: it waits initDelay
// (compressed by ScopedTimeScale) and gives null when startsModule is false. `Fake` is
// constructed as Fake(name, settings, config, components).
//
// Thread safety: both members may be called from any thread.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "vorn/core/ModuleRegistry.hpp"
#include "vorn/runtime/Durations.hpp"
#include "vorn/testing/FakeModule.hpp"

namespace vorn::testing {

template <class Fake>
class FakeModuleClass {
 public:
  /// Registers the class under the description of `name`, replacing what was registered.
  static void registerClass(ModuleName name, FakeModuleSettings settings) {
    const std::string version = settings.version;
    ModuleRegistry::registerModule(
        {description(name), version,
         [name, settings = std::move(settings)](const auto& config, const auto& components) {
           return start(name, settings, config, components);
         }});
  }

  /// Every module the class started so far, oldest first.
  static std::vector<std::shared_ptr<Fake>> started() {
    std::lock_guard lock(state().mutex);
    return state().modules;
  }

 private:
  struct State {
    std::mutex mutex;
    std::vector<std::shared_ptr<Fake>> modules;  // guarded by mutex
  };

  // Never destroyed: a factory still running on a pool thread may record into it at exit.
  static State& state() {
    static State* const instance = new State;
    return *instance;
  }

  static std::shared_ptr<VORNModule> start(ModuleName name, const FakeModuleSettings& settings,
                                           const std::shared_ptr<const ModuleConfig>& config,
                                           const std::shared_ptr<VORNSdkComponents>& components) {
    if (settings.initDelay.count() > 0)
      std::this_thread::sleep_for(durations::scaled(settings.initDelay));
    if (!settings.startsModule)
      return nullptr;
    auto module = std::make_shared<Fake>(name, settings, config, components);
    std::lock_guard lock(state().mutex);
    state().modules.push_back(module);
    return module;
  }
};

}  // namespace vorn::testing

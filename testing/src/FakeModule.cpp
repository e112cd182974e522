#include "vorn/testing/FakeModule.hpp"

#include <map>
#include <thread>

#include "vorn/core/ModuleRegistry.hpp"
#include "vorn/runtime/Durations.hpp"

namespace vorn::testing {
namespace {

struct StartedModules {
  std::mutex mutex;
  std::map<ModuleName, std::vector<std::shared_ptr<FakeModule>>> modules;  // guarded by mutex
};

// Never destroyed: a factory still running on a pool thread may record into it at exit.
StartedModules& startedModules() {
  static StartedModules* const instance = new StartedModules();
  return *instance;
}

std::shared_ptr<VORNModule> start(ModuleName name, const FakeModuleSettings& settings,
                                  const std::shared_ptr<const ModuleConfig>& config,
                                  const std::shared_ptr<VORNSdkComponents>& components) {
  if (settings.initDelay.count() > 0)
    std::this_thread::sleep_for(durations::scaled(settings.initDelay));
  if (!settings.startsModule)
    return nullptr;
  auto module = std::make_shared<FakeModule>(name, settings, config, components);
  StartedModules& started = startedModules();
  std::lock_guard guard(started.mutex);
  started.modules[name].push_back(module);
  return module;
}

}  // namespace

void FakeModule::registerClass(ModuleName name, FakeModuleSettings settings) {
  const std::string version = settings.version;
  ModuleRegistry::registerModule(
      {description(name), version,
       [name, settings = std::move(settings)](const auto& config, const auto& components) {
         return start(name, settings, config, components);
       }});
}

std::vector<std::shared_ptr<FakeModule>> FakeModule::started(ModuleName name) {
  StartedModules& started = startedModules();
  std::lock_guard guard(started.mutex);
  const auto found = started.modules.find(name);
  return found == started.modules.end() ? std::vector<std::shared_ptr<FakeModule>>{}
                                        : found->second;
}

FakeModule::FakeModule(ModuleName name, FakeModuleSettings settings,
                       std::shared_ptr<const ModuleConfig> config,
                       std::shared_ptr<VORNSdkComponents> components)
    : name_(name),
      settings_(std::move(settings)),
      config_(std::move(config)),
      components_(std::move(components)) {}

void FakeModule::tearDown() {
  std::lock_guard guard(mutex_);
  ++tearDowns_;
}

std::shared_ptr<Subscriber> FakeModule::asSubscriber() {
  if (!settings_.subscribes)
    return nullptr;
  return shared_from_this();
}

void FakeModule::receive(std::shared_ptr<const Message> message) {
  {
    std::lock_guard guard(mutex_);
    received_.push_back(std::move(message));
  }
  changed_.notify_all();
}

std::vector<std::shared_ptr<const Message>> FakeModule::received() const {
  std::lock_guard guard(mutex_);
  return received_;
}

bool FakeModule::waitForMessages(std::size_t count, std::chrono::nanoseconds timeout) const {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, timeout, [&] { return received_.size() >= count; });
}

int FakeModule::tearDownCount() const {
  std::lock_guard guard(mutex_);
  return tearDowns_;
}

}  // namespace vorn::testing

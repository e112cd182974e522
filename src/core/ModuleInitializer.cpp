#include "vorn/core/ModuleInitializer.hpp"

#include <chrono>

#include "vorn/core/ModuleQueues.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/runtime/Durations.hpp"

namespace vorn {
namespace {

// BaseOperation counts its time-out in seconds and scales it itself.
double timeoutSeconds() {
  return std::chrono::duration<double>(durations::kModuleInitializerTimeout).count();
}

}  // namespace

ModuleInitializer::ModuleInitializer(std::shared_ptr<const ModuleConfig> config,
                                     ModuleClass moduleClass, StoreModule storeModule)
    : BaseOperation(timeoutSeconds()),
      config_(std::move(config)),
      moduleClass_(std::move(moduleClass)),
      storeModule_(std::move(storeModule)) {}

bool ModuleInitializer::isAsynchronous() const {
  return true;
}

bool ModuleInitializer::isConcurrent() const {
  return false;
}

void ModuleInitializer::main() {
  keep(makeModule());
  finish();
}

std::shared_ptr<VORNModule> ModuleInitializer::module() const {
  std::lock_guard guard(lock());
  return module_;
}

void ModuleInitializer::addToFreshQueue(std::shared_ptr<ModuleInitializer> initializer) {
  if (!initializer || !initializer->config())
    return;
  const ModuleName name = initializer->config()->name();
  ModuleQueues::removeQueue(name);
  ModuleQueues::addOperation(std::move(initializer), name);
}

std::shared_ptr<VORNModule> ModuleInitializer::makeModule() const {
  if (!config_ || !moduleClass_.initModule)
    return nullptr;
  // Module code is not ours: whatever it throws must not reach the queue's worker.
  try {
    return moduleClass_.initModule(config_, VORNSdkComponents::create(*config_));
  } catch (...) {
    VORN_LOG_ERROR(LoggerCategory::sdk, "Module `" + moduleClass_.description +
                                            "` threw while initializing. No module was kept.");
    return nullptr;
  }
}

void ModuleInitializer::keep(std::shared_ptr<VORNModule> module) {
  if (!module)
    return;
  std::lock_guard guard(lock());
  if (isCancelled())
    return;
  module_ = module;
  if (storeModule_)
    storeModule_(std::move(module));
}

}  // namespace vorn

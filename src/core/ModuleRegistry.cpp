#include "vorn/core/ModuleRegistry.hpp"

#include <map>
#include <mutex>

#include "platform/DynamicLibrary.hpp"
#include "vorn/logging/Log.hpp"

namespace vorn {
namespace {

struct Registry {
  std::mutex mutex;
  std::map<std::string, ModuleClass, std::less<>> classes;  // guarded by mutex
};

// Never destroyed: a library's load-time registrar or a late lookup may run while the
// process exits.
Registry& registry() {
  static Registry* const instance = new Registry();
  return *instance;
}

}  // namespace

void ModuleRegistry::registerModule(ModuleClass moduleClass) {
  if (!moduleClass.initModule) {
    VORN_LOG_ERROR(LoggerCategory::sdk, "Module class `" + moduleClass.description +
                                            "` has no initializer. It was not registered.");
    return;
  }
  Registry& reg = registry();
  std::lock_guard guard(reg.mutex);
  reg.classes.insert_or_assign(moduleClass.description, std::move(moduleClass));
}

void ModuleRegistry::unregisterModule(std::string_view description) {
  Registry& reg = registry();
  std::lock_guard guard(reg.mutex);
  if (const auto found = reg.classes.find(description); found != reg.classes.end())
    reg.classes.erase(found);
}

std::optional<ModuleClass> ModuleRegistry::lookup(std::string_view description) {
  Registry& reg = registry();
  std::lock_guard guard(reg.mutex);
  const auto found = reg.classes.find(description);
  if (found == reg.classes.end())
    return std::nullopt;
  return found->second;
}

bool ModuleRegistry::loadLibrary(const std::string& path) {
  const auto load = detail::loadDynamicLibrary(path);
  if (!load.loaded) {
    VORN_LOG_ERROR(LoggerCategory::sdk,
                   "Failed to load the module library `" + path + "`: " + load.reason);
  }
  return load.loaded;
}

}  // namespace vorn

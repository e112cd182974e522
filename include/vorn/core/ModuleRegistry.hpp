// ModuleRegistry: the process-wide lookup of feature-module classes by name.
//
// It stands in for the platform's class lookup by name: a module library registers its class
// under its description when it is loaded (see ModuleRegistrar), and the core finds it by
// the module name's description when it starts the module. A host may also load a module
// library by path; the library then registers itself as it loads. Libraries are never
// unloaded: a registered factory must stay callable for the life of the process.
//
// Registering a description that is already registered replaces the earlier class. A class
// without a factory is refused with a log line, so lookup() only ever gives startable classes.
//
// Ownership: the registry lives for the whole process and is never destroyed. Thread safety:
// every function may be called from any thread, including from a library's load-time
// initialisers; no lock is held while a factory runs.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/core/ModuleClass.hpp"

namespace vorn {

class VORN_API ModuleRegistry {
 public:
  ModuleRegistry() = delete;

  /// Registers `moduleClass` under its description, replacing an earlier registration.
  static void registerModule(ModuleClass moduleClass);
  /// Forgets the class registered under `description`; nothing when there is none.
  static void unregisterModule(std::string_view description);
  /// The class registered under `description`, or no value.
  static std::optional<ModuleClass> lookup(std::string_view description);

  /// Loads the shared library at `path`, which registers its module classes as it loads.
  /// False, with an error line naming the path and the loader's reason, when it fails.
  static bool loadLibrary(const std::string& path);
};

}  // namespace vorn

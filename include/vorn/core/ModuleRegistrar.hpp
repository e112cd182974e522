// ModuleRegistrar: registers a module class when the library that defines it is loaded.
//
// A module library declares one registrar at namespace scope, usually through the macro:
//
//   VORN_REGISTER_MODULE(PushModule, {"VORNSdkPushModule", "8.1.0", &PushModule::initModule})
//
// Its constructor runs while the library loads (or, when it is linked in statically, before
// main) and registers the class with ModuleRegistry. It never unregisters: module libraries
// stay loaded for the life of the process.
//
// Thread safety: as ModuleRegistry::registerModule().
#pragma once

#include "vorn/base/Export.hpp"
#include "vorn/core/ModuleClass.hpp"

namespace vorn {

class VORN_API ModuleRegistrar {
 public:
  explicit ModuleRegistrar(ModuleClass moduleClass);
};

}  // namespace vorn

/// Declares a registrar for the module class given as the remaining arguments; `tag` only has
/// to be unique among the registrars of one source file.
#define VORN_REGISTER_MODULE(tag, ...)                                                      \
  namespace {                                                                               \
  const ::vorn::ModuleRegistrar vornModuleRegistrar_##tag{::vorn::ModuleClass __VA_ARGS__}; \
  }

#include "vorn/core/ModuleRegistrar.hpp"

#include "vorn/core/ModuleRegistry.hpp"

namespace vorn {

ModuleRegistrar::ModuleRegistrar(ModuleClass moduleClass) {
  ModuleRegistry::registerModule(std::move(moduleClass));
}

}  // namespace vorn

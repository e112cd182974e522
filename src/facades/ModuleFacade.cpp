#include "vorn/facades/ModuleFacade.hpp"

#include <utility>

namespace vorn {

ModuleFacade::ModuleFacade(ModuleName name, std::shared_ptr<const Compatibility> compatibility)
    : name_(name), compatibility_(std::move(compatibility)) {}

ModuleFacade::~ModuleFacade() = default;

std::shared_ptr<VORNModule> ModuleFacade::module() const {
  return module_.read();
}

void ModuleFacade::attachModule(std::shared_ptr<VORNModule> module) {
  // The replaced module is released after the cell, so its destructor runs outside it.
  module_.mutate([&](std::shared_ptr<VORNModule>& held) { held.swap(module); });
}

void ModuleFacade::clearModule() {
  attachModule(nullptr);
}

}  // namespace vorn

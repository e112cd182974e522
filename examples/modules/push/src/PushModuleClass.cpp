// The module class the core finds by name; registered when this library is loaded.
#include <memory>

#include "PushModule.hpp"
#include "vorn/core/ModuleRegistrar.hpp"

namespace push {
namespace {

std::shared_ptr<vorn::VORNModule> initModule(
    const std::shared_ptr<const vorn::ModuleConfig>& config,
    const std::shared_ptr<vorn::VORNSdkComponents>& components) {
  const auto pushConfig = std::dynamic_pointer_cast<const PushModuleConfig>(config);
  if (!pushConfig || !components)
    return nullptr;
  return PushModule::start(*pushConfig, components);
}

}  // namespace
}  // namespace push

VORN_REGISTER_MODULE(push, {std::string(push::kModuleDescription),
                            std::string(push::kModuleVersion), &push::initModule})

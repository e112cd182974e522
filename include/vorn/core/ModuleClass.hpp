// ModuleClass: a feature module's implementation "class": the name it is found by, the
// version it reports, and the factory that starts a module from its configuration.
//
// The description is the module name's description ("VORNSdkPushModule", "Cdp.CdpModule"),
// the name the core looks the class up by. initModule returns the running module, or null
// when the module could not start; it is called on the module's own queue and may block.
//
// Ownership: a plain value; copies share the factory. Thread safety: the factory must be
// callable from any thread.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "vorn/core/ModuleConfig.hpp"
#include "vorn/core/VORNModule.hpp"
#include "vorn/core/VORNSdkComponents.hpp"

namespace vorn {

struct ModuleClass {
  using Factory = std::function<std::shared_ptr<VORNModule>(
      const std::shared_ptr<const ModuleConfig>& config,
      const std::shared_ptr<VORNSdkComponents>& components)>;

  std::string description;
  std::string moduleVersion;
  Factory initModule;
};

}  // namespace vorn

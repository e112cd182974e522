// A module configuration for tests: a module name, an application id and whatever stored
// properties the test lists, compared by the core exactly as a real module's would be.
//
// Immutable; safe to read from any thread.
#pragma once

#include <string>
#include <vector>

#include "vorn/core/ModuleConfig.hpp"

namespace vorn::testing {

class FakeModuleConfig : public ModuleConfig {
 public:
  explicit FakeModuleConfig(ModuleName name, std::string appId = "APP1",
                            std::vector<Property> properties = {});

  ModuleName name() const override { return name_; }
  std::string appId() const override { return appId_; }
  std::vector<Property> storedProperties() const override { return properties_; }

 private:
  const ModuleName name_;
  const std::string appId_;
  const std::vector<Property> properties_;
};

}  // namespace vorn::testing

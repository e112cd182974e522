#include "vorn/testing/FakeModuleConfig.hpp"

namespace vorn::testing {

FakeModuleConfig::FakeModuleConfig(ModuleName name, std::string appId,
                                   std::vector<Property> properties)
    : name_(name), appId_(std::move(appId)), properties_(std::move(properties)) {}

}  // namespace vorn::testing

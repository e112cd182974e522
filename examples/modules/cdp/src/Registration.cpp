// Registers the module class when the library is loaded.
#include <string>

#include "CdpModule.hpp"
#include "vorn/core/ModuleRegistrar.hpp"

VORN_REGISTER_MODULE(CdpModule, {std::string(cdp::kModuleDescription),
                                 std::string(cdp::kModuleVersion), &cdp::CdpModule::initModule})

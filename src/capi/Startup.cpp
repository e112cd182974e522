// The bridge's start-up: configurations built from module names and JSON settings, module
// libraries, the platform, the state and teardown.
#include <memory>
#include <new>
#include <string>

#include "capi/Boundary.hpp"
#include "capi/JsonArguments.hpp"
#include "capi/Text.hpp"
#include "vorn/core/ConfigBuilder.hpp"
#include "vorn/core/ModuleRegistry.hpp"
#include "vorn/core/ModuleSettingsParsers.hpp"
#include "vorn/platform/Platform.hpp"
#include "vorn/sdk/VORNSdk.hpp"
#include "vorn/vorn.h"

struct vorn_config {
  vorn::ConfigBuilder builder;
};

using vorn::capi::guardedStatus;
using vorn::capi::refuse;

extern "C" {

vorn_status vorn_set_data_directory(const char* path) {
  constexpr std::string_view function = "vorn_set_data_directory";
  return guardedStatus(function, [&] {
    if (path == nullptr || *path == '\0')
      return refuse(function, VORN_ERROR_INVALID_ARGUMENT, "the path is empty");
    vorn::Platform::install(vorn::Platform::defaultPlatform(path));
    return VORN_OK;
  });
}

vorn_status vorn_use_ephemeral_platform(void) {
  return guardedStatus("vorn_use_ephemeral_platform", [] {
    vorn::Platform::install(vorn::Platform::ephemeral());
    return VORN_OK;
  });
}

vorn_config* vorn_config_new(void) {
  return vorn::capi::guarded<vorn_config*>("vorn_config_new", nullptr,
                                           [] { return new vorn_config(); });
}

void vorn_config_free(vorn_config* config) {
  delete config;
}

vorn_status vorn_config_add_module(vorn_config* config, const char* module,
                                   const char* settings_json, vorn_module_callback callback,
                                   void* context) {
  constexpr std::string_view function = "vorn_config_add_module";
  return guardedStatus(function, [&] {
    if (config == nullptr)
      return refuse(function, VORN_ERROR_INVALID_ARGUMENT, "the configuration is NULL");
    const auto name = vorn::capi::moduleFrom(module);
    if (!name)
      return refuse(function, VORN_ERROR_UNKNOWN_MODULE,
                    "unknown module \"" + std::string(module ? module : "(null)") + "\"");
    const auto settings = vorn::capi::parseJson(settings_json);
    if (!settings)
      return refuse(function, VORN_ERROR_INVALID_SETTINGS,
                    "the settings of module " + std::string(module) + " are not JSON");
    auto parsed = vorn::ModuleSettingsParsers::parse(*name, *settings);
    if (!parsed.config)  // the registry has logged why
      return VORN_ERROR_INVALID_SETTINGS;
    vorn::CompletionCallback onCompletion;
    if (callback != nullptr) {
      onCompletion = [callback, context, name = *name](vorn::OperationResult result) {
        callback(std::string(vorn::rawValue(name)).c_str(), static_cast<vorn_result>(result),
                 context);
      };
    }
    if (*name == vorn::ModuleName::cdp)
      config->builder.setCdp(std::move(parsed.config), std::move(onCompletion));
    else
      config->builder.setPush(std::move(parsed.config), std::move(onCompletion));
    return VORN_OK;
  });
}

vorn_status vorn_initialize(const vorn_config* config) {
  constexpr std::string_view function = "vorn_initialize";
  return guardedStatus(function, [&] {
    if (config == nullptr)
      return refuse(function, VORN_ERROR_INVALID_ARGUMENT, "the configuration is NULL");
    vorn::VORNSdk::initializeSdk(config->builder.build());
    return VORN_OK;
  });
}

vorn_status vorn_load_module_library(const char* path) {
  constexpr std::string_view function = "vorn_load_module_library";
  return guardedStatus(function, [&] {
    if (path == nullptr || *path == '\0')
      return refuse(function, VORN_ERROR_INVALID_ARGUMENT, "the path is empty");
    // The registry logs the loader's reason.
    return vorn::ModuleRegistry::loadLibrary(path) ? VORN_OK : VORN_ERROR_LOAD_FAILED;
  });
}

vorn_initialization_state vorn_get_initialization_state(void) {
  return vorn::capi::guarded("vorn_get_initialization_state", VORN_STATE_NONE, [] {
    return static_cast<vorn_initialization_state>(vorn::VORNSdk::initializationState());
  });
}

vorn_status vorn_teardown_module(const char* module) {
  constexpr std::string_view function = "vorn_teardown_module";
  return guardedStatus(function, [&] {
    const auto name = vorn::capi::moduleFrom(module);
    if (!name)
      return refuse(function, VORN_ERROR_UNKNOWN_MODULE,
                    "unknown module \"" + std::string(module ? module : "(null)") + "\"");
    vorn::VORNSdk::tearDownModule(*name);
    return VORN_OK;
  });
}

vorn_status vorn_teardown(void) {
  return guardedStatus("vorn_teardown", [] {
    for (const vorn::ModuleName name : vorn::kAllModuleNames)
      vorn::VORNSdk::tearDownModule(name);
    return VORN_OK;
  });
}

char* vorn_state_json(void) {
  return vorn::capi::guardedText("vorn_state_json",
                                 [] { return vorn::capi::copyOut(vorn::VORNSdk::state()); });
}

}  // extern "C"

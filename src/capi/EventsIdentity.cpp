// The bridge's events and identity: custom events with JSON attributes, profile ids and
// profile attributes for every module or named ones, and the identity JSON.
#include <optional>
#include <string>
#include <vector>

#include "capi/Boundary.hpp"
#include "capi/JsonArguments.hpp"
#include "capi/Text.hpp"
#include "vorn/events/CustomEvent.hpp"
#include "vorn/sdk/VORNSdk.hpp"
#include "vorn/vorn.h"

using vorn::capi::guardedStatus;
using vorn::capi::refuse;

extern "C" {

vorn_status vorn_track_event(const char* name, const char* attributes_json) {
  constexpr std::string_view function = "vorn_track_event";
  return guardedStatus(function, [&] {
    if (name == nullptr)
      return refuse(function, VORN_ERROR_INVALID_ARGUMENT, "the event name is NULL");
    std::optional<vorn::Dictionary> attributes;
    if (attributes_json != nullptr) {
      attributes = vorn::capi::dictionaryFrom(attributes_json);
      if (!attributes)
        return refuse(function, VORN_ERROR_INVALID_ARGUMENT,
                      "the attributes are not a JSON object");
    }
    auto event = vorn::CustomEvent::create(name, std::move(attributes));
    if (!event)  // the event has logged why
      return VORN_ERROR_INVALID_ARGUMENT;
    vorn::VORNSdk::track(std::move(event));
    return VORN_OK;
  });
}

char* vorn_identity_json(void) {
  return vorn::capi::guardedText("vorn_identity_json", [] {
    return vorn::capi::copyOut(vorn::VORNSdk::identity()->toJson());
  });
}

vorn_status vorn_identity_set_profile_id(const char* profile_id, const char* const* modules,
                                         size_t module_count) {
  constexpr std::string_view function = "vorn_identity_set_profile_id";
  return guardedStatus(function, [&] {
    if (profile_id == nullptr)
      return refuse(function, VORN_ERROR_INVALID_ARGUMENT, "the profile id is NULL");
    if (modules == nullptr) {
      vorn::VORNSdk::identity()->setProfileId(profile_id);
      return VORN_OK;
    }
    std::vector<vorn::ModuleName> names;
    if (const auto status = vorn::capi::modulesFrom(function, modules, module_count, names);
        status != VORN_OK)
      return status;
    vorn::VORNSdk::identity()->setProfileId(profile_id, names);
    return VORN_OK;
  });
}

vorn_status vorn_identity_set_profile_attributes(const char* attributes_json,
                                                 const char* const* modules, size_t module_count) {
  constexpr std::string_view function = "vorn_identity_set_profile_attributes";
  return guardedStatus(function, [&] {
    const auto attributes = vorn::capi::stringDictionaryFrom(attributes_json);
    if (!attributes)
      return refuse(function, VORN_ERROR_INVALID_ARGUMENT,
                    "the attributes are not a JSON object of strings");
    if (modules == nullptr) {
      vorn::VORNSdk::identity()->setProfileAttributes(*attributes);
      return VORN_OK;
    }
    std::vector<vorn::ModuleName> names;
    if (const auto status = vorn::capi::modulesFrom(function, modules, module_count, names);
        status != VORN_OK)
      return status;
    vorn::VORNSdk::identity()->setProfileAttributes(*attributes, names);
    return VORN_OK;
  });
}

vorn_status vorn_identity_clear_profile_attribute(const char* key) {
  constexpr std::string_view function = "vorn_identity_clear_profile_attribute";
  return guardedStatus(function, [&] {
    if (key == nullptr)
      return refuse(function, VORN_ERROR_INVALID_ARGUMENT, "the key is NULL");
    vorn::VORNSdk::identity()->clearProfileAttribute(key);
    return VORN_OK;
  });
}

}  // extern "C"

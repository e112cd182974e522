// The bridge's module operations: the CDP consent and the common push operations.
#include <nlohmann/json.hpp>

#include <optional>
#include <set>
#include <string>

#include "capi/Boundary.hpp"
#include "capi/JsonArguments.hpp"
#include "capi/Text.hpp"
#include "vorn/sdk/VORNSdk.hpp"
#include "vorn/vorn.h"

using vorn::capi::guardedStatus;
using vorn::capi::guardedText;
using vorn::capi::refuse;

namespace {

vorn_status nullOut(std::string_view function) {
  return refuse(function, VORN_ERROR_INVALID_ARGUMENT, "the result pointer is NULL");
}

char* tagsJson(const std::optional<std::set<std::string>>& tags) {
  if (!tags)
    return nullptr;
  return vorn::capi::copyOut(nlohmann::json(*tags).dump());
}

}  // namespace

extern "C" {

vorn_status vorn_cdp_get_consent(vorn_consent* consent) {
  constexpr std::string_view function = "vorn_cdp_get_consent";
  return guardedStatus(function, [&] {
    if (consent == nullptr)
      return nullOut(function);
    *consent = static_cast<vorn_consent>(vorn::VORNSdk::cdp()->getConsent());
    return VORN_OK;
  });
}

vorn_status vorn_cdp_set_consent(vorn_consent consent) {
  constexpr std::string_view function = "vorn_cdp_set_consent";
  return guardedStatus(function, [&] {
    const int raw = vorn::capi::rawEnum(consent);
    if (raw < VORN_CONSENT_OPT_IN || raw > VORN_CONSENT_NONE)
      return refuse(function, VORN_ERROR_INVALID_ARGUMENT,
                    "unknown consent " + std::to_string(raw));
    vorn::VORNSdk::cdp()->setConsent(static_cast<vorn::Consent>(raw));
    return VORN_OK;
  });
}

vorn_status vorn_push_set_device_token(const uint8_t* token, size_t length) {
  constexpr std::string_view function = "vorn_push_set_device_token";
  return guardedStatus(function, [&] {
    if (token == nullptr && length > 0)
      return refuse(function, VORN_ERROR_INVALID_ARGUMENT, "the token is NULL");
    const vorn::Bytes bytes = token == nullptr ? vorn::Bytes() : vorn::Bytes(token, token + length);
    vorn::VORNSdk::mp()->setDeviceToken(bytes);
    return VORN_OK;
  });
}

char* vorn_push_contact_key(void) {
  return guardedText("vorn_push_contact_key", []() -> char* {
    const auto key = vorn::VORNSdk::mp()->contactKey();
    return key ? vorn::capi::copyOut(*key) : nullptr;
  });
}

vorn_status vorn_push_add_tag(const char* tag, int* added) {
  constexpr std::string_view function = "vorn_push_add_tag";
  return guardedStatus(function, [&] {
    if (tag == nullptr)
      return refuse(function, VORN_ERROR_INVALID_ARGUMENT, "the tag is NULL");
    if (added == nullptr)
      return nullOut(function);
    *added = vorn::VORNSdk::mp()->addTag(tag) ? 1 : 0;
    return VORN_OK;
  });
}

char* vorn_push_add_tags(const char* tags_json) {
  constexpr std::string_view function = "vorn_push_add_tags";
  return guardedText(function, [&]() -> char* {
    const auto tags = vorn::capi::stringsFrom(tags_json);
    if (!tags) {
      vorn::capi::logFailure(function, "the tags are not a JSON array of strings");
      return nullptr;
    }
    return tagsJson(vorn::VORNSdk::mp()->addTags(*tags));
  });
}

vorn_status vorn_push_remove_tag(const char* tag, int* removed) {
  constexpr std::string_view function = "vorn_push_remove_tag";
  return guardedStatus(function, [&] {
    if (tag == nullptr)
      return refuse(function, VORN_ERROR_INVALID_ARGUMENT, "the tag is NULL");
    if (removed == nullptr)
      return nullOut(function);
    *removed = vorn::VORNSdk::mp()->removeTag(tag) ? 1 : 0;
    return VORN_OK;
  });
}

char* vorn_push_tags(void) {
  return guardedText("vorn_push_tags", [] { return tagsJson(vorn::VORNSdk::mp()->tags()); });
}

vorn_status vorn_push_set_enabled(int enabled) {
  return guardedStatus("vorn_push_set_enabled", [&] {
    vorn::VORNSdk::mp()->setPushEnabled(enabled != 0);
    return VORN_OK;
  });
}

vorn_status vorn_push_enabled(int* enabled) {
  constexpr std::string_view function = "vorn_push_enabled";
  return guardedStatus(function, [&] {
    if (enabled == nullptr)
      return nullOut(function);
    *enabled = vorn::VORNSdk::mp()->pushEnabled() ? 1 : 0;
    return VORN_OK;
  });
}

vorn_status vorn_push_inbox_counts(vorn_inbox_counts* counts) {
  constexpr std::string_view function = "vorn_push_inbox_counts";
  return guardedStatus(function, [&] {
    if (counts == nullptr)
      return nullOut(function);
    const auto push = vorn::VORNSdk::mp();
    *counts = {push->getAllMessagesCount(), push->getUnreadMessagesCount(),
               push->getReadMessagesCount(), push->getDeletedMessagesCount()};
    return VORN_OK;
  });
}

vorn_status vorn_push_refresh_messages(int* started) {
  constexpr std::string_view function = "vorn_push_refresh_messages";
  return guardedStatus(function, [&] {
    if (started == nullptr)
      return nullOut(function);
    *started = vorn::VORNSdk::mp()->refreshMessages() ? 1 : 0;
    return VORN_OK;
  });
}

vorn_status vorn_push_mark_message_read(const char* message_id, int* marked) {
  constexpr std::string_view function = "vorn_push_mark_message_read";
  return guardedStatus(function, [&] {
    if (message_id == nullptr)
      return refuse(function, VORN_ERROR_INVALID_ARGUMENT, "the message id is NULL");
    if (marked == nullptr)
      return nullOut(function);
    *marked = vorn::VORNSdk::mp()->markMessageWithIdRead(message_id) ? 1 : 0;
    return VORN_OK;
  });
}

vorn_status vorn_push_mark_all_messages_read(int* marked) {
  constexpr std::string_view function = "vorn_push_mark_all_messages_read";
  return guardedStatus(function, [&] {
    if (marked == nullptr)
      return nullOut(function);
    *marked = vorn::VORNSdk::mp()->markAllMessagesRead() ? 1 : 0;
    return VORN_OK;
  });
}

}  // extern "C"

// The reference push module: what an app needs to configure it, and what it reports.
//
// Loading libvornsdk-push registers the module class "VORNSdkPushModule" (version 8.3.0)
// with the core; an app then starts it by handing a PushModuleConfig to
// ConfigBuilder::setPush() and reaches it through the PUSH facade (vorn::PushInterface).
//
// What the module does, against the back end at `PushSettings::endpoint`:
// - Registration. The device token (lower-case hex of setDeviceToken()'s bytes), the tags,
//   the attributes and contact key (from identity events: the profile id becomes the contact
//   key, profile attributes and attributes are merged into the attributes, an empty text
//   value removes its key) and the push-enabled flag are kept in the module's secure
//   preferences "push" and restored at start. Every change marks the registration dirty
//   (persisted as well) and schedules one coalesced POST endpoint + "/v1/registration" on the
//   module's serial queue, authorised with a bearer token; a dirty registration is sent again
//   at start, at each foreground and after an app version change. A send refused or answered
//   with a Retry-After is retried once, when the deadline has passed; other failures wait
//   for the next of those occasions (no periodic timer).
// - Token. POST endpoint + "/v1/token" with the registration id; the answer's "token" is
//   cached in memory and in the secure preferences and sent as "Authorization: Bearer <t>".
//   A 401 makes the network manager refresh it once and repeat the call once.
// - Inbox. GET endpoint + "/v1/inbox" on refreshMessages(), refresh() and each foreground;
//   marks are applied locally at once and sent in the background (POST
//   /v1/inbox/<id>/read, DELETE /v1/inbox/<id>). getAllMessages() lists the messages not
//   deleted; getDeletedMessages() those deleted since the last refresh.
// - Secrets (the access token, the device token, the registration id, the contact key and
//   the text attribute values) are redacted from every line the module logs.
// - Operations that need a phone's user interface or location services (table views,
//   regions, location watching, notification requests, showing in-app messages) answer
//   their default and log one debug line saying so. Analytics tracking is not sent.
//
// stateProperties(), as VORNSdk::state() shows them under modules.push.properties:
// - "registered" (bool): the last registration sent was accepted and nothing changed since;
// - "registrationsSent" (int): registrations the back end accepted since start;
// - "inboxMessages" (int): messages in the inbox that are not deleted;
// - "tokenRefreshes" (int): tokens fetched from /v1/token since start;
// - "tags" (int): how many tags the registration holds.
//
// Thread safety: a PushModuleConfig is immutable; read it from any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "vorn/core/ModuleConfig.hpp"

#ifndef PUSH_API
#define PUSH_API __attribute__((visibility("default")))
#endif

namespace push {

/// The name the core finds the module class by, and the version the class reports.
inline constexpr std::string_view kModuleDescription = "VORNSdkPushModule";
inline constexpr std::string_view kModuleVersion = "8.3.0";

struct PushSettings {
  /// The back end's base URL ("http://127.0.0.1:8080"); paths are appended to it.
  std::string endpoint;
  /// The spacing the module keeps after an accepted registration, in seconds; 0 for none.
  double registrationRateLimitSeconds = 0;
};

class PUSH_API PushModuleConfig final : public vorn::ModuleConfig {
 public:
  PushModuleConfig(std::string appId, PushSettings settings);

  vorn::ModuleName name() const override;
  std::string appId() const override;
  /// "appId", "endpoint" and "registrationRateLimitSeconds", in this order.
  std::vector<Property> storedProperties() const override;

  const PushSettings& settings() const noexcept { return settings_; }

 private:
  const std::string appId_;
  const PushSettings settings_;
};

}  // namespace push

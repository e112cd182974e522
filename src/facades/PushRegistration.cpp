// Push facade: registration data, tokens and notifications, each forwarded by the rule in
// Forwarding.hpp with its own not-ready line and default.
#include "facades/Forwarding.hpp"
#include "vorn/facades/PUSH.hpp"

namespace vorn {

using detail::forwardCall;
using I = PushInterface;

std::optional<std::string> PUSH::contactKey() {
  return forwardCall(ready(), &I::contactKey, "The `Contact key` not fetched.", std::nullopt);
}

bool PUSH::addTag(const std::string& tag) {
  return forwardCall(ready(), &I::addTag, "The `Tag` not added.", false, tag);
}

std::optional<PUSH::Tags> PUSH::addTags(const std::vector<std::string>& tags) {
  return forwardCall(ready(), &I::addTags, "The `Tags` not added.", std::nullopt, tags);
}

bool PUSH::removeTag(const std::string& tag) {
  return forwardCall(ready(), &I::removeTag, "The `Tag` not removed.", false, tag);
}

std::optional<PUSH::Tags> PUSH::tags() {
  return forwardCall(ready(), &I::tags, "The `Tags` not fetched.", std::nullopt);
}

void PUSH::setDeviceToken(const Bytes& token) {
  forwardCall(ready(), &I::setDeviceToken, "The `Device Token` not set.", token);
}

void PUSH::setDebugLoggingEnabled(bool enabled) {
  forwardCall(ready(), &I::setDebugLoggingEnabled, "The `Debug Logging mode` not set.", enabled);
}

std::optional<Dictionary> PUSH::attributes() {
  return forwardCall(ready(), &I::attributes, "The `Attributes` not fetched.", std::nullopt);
}

std::optional<std::string> PUSH::deviceToken() {
  return forwardCall(ready(), &I::deviceToken, "The `Device Token` not fetched.", std::nullopt);
}

std::optional<std::string> PUSH::accessToken() {
  return forwardCall(ready(), &I::accessToken, "The `Access Token` not fetched.", std::nullopt);
}

std::optional<std::string> PUSH::deviceIdentifier() {
  return forwardCall(ready(), &I::deviceIdentifier, "The `Device Identitfier` not fetched.",
                     std::nullopt);
}

void PUSH::setNotificationRequest(const NotificationRequest& request) {
  forwardCall(ready(), &I::setNotificationRequest, "The `Notification Request` not set.", request);
}

std::optional<NotificationRequest> PUSH::notificationRequest() {
  return forwardCall(ready(), &I::notificationRequest, "The `Notification Request` not fetched.",
                     std::nullopt);
}

void PUSH::setNotificationUserInfo(const Dictionary& userInfo) {
  forwardCall(ready(), &I::setNotificationUserInfo, "The `Notification User Info` not fetched.",
              userInfo);
}

Dictionary PUSH::notificationUserInfo() {
  return forwardCall(ready(), &I::notificationUserInfo, "The `Notification User Info` not fetched.",
                     Dictionary{});
}

void PUSH::setPushEnabled(bool enabled) {
  forwardCall(ready(), &I::setPushEnabled, "The `Push Enabled` not set.", enabled);
}

bool PUSH::pushEnabled() {
  return forwardCall(ready(), &I::pushEnabled, "The `Push Enabled` not fetched.", false);
}

bool PUSH::refresh(FetchCompletionHandler fetchCompletionHandler) {
  return forwardCall(ready(), &I::refresh, "The data was not refreshed.", false,
                     std::move(fetchCompletionHandler));
}

void PUSH::setRegistrationCallback(RegistrationCallback callback) {
  forwardCall(ready(), &I::setRegistrationCallback,
              "The `Registration Callback` was not set. Push module is nil.", std::move(callback));
}

void PUSH::unsetRegistrationCallback() {
  forwardCall(ready(), &I::unsetRegistrationCallback,
              "The `Registration Callback` was not unset. Push module is nil.");
}

bool PUSH::setSignedString(const std::optional<std::string>& signedString) {
  return forwardCall(ready(), &I::setSignedString, "The `Signed String` not set.", false,
                     signedString);
}

std::optional<std::string> PUSH::signedString() {
  return forwardCall(ready(), &I::signedString, "The `Signed String` not fetched.", std::nullopt);
}

}  // namespace vorn

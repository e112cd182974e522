// FakePushModule: its class, identity, and the registration and notification operations.
#include "vorn/testing/FakePushModule.hpp"

#include "FakeAnswer.hpp"

namespace vorn::testing {

FakeModuleSettings FakePushModule::defaultSettings() {
  FakeModuleSettings settings;
  settings.version = "8.1.0";
  return settings;
}

void FakePushModule::registerClass(FakeModuleSettings settings) {
  Class::registerClass(ModuleName::push, std::move(settings));
}

std::shared_ptr<FakePushModule> FakePushModule::create(FakeModuleSettings settings) {
  return std::make_shared<FakePushModule>(ModuleName::push, std::move(settings), nullptr, nullptr);
}

ModuleIdentity FakePushModule::identity() {
  return {"fake-push-application", "fake-push-profile", "fake-push-installation", std::nullopt};
}

FakePushModule::FakePushModule(ModuleName name, FakeModuleSettings settings,
                               std::shared_ptr<const ModuleConfig> config,
                               std::shared_ptr<VORNSdkComponents> components)
    : FakeModule(name, std::move(settings), std::move(config), std::move(components)) {}

std::optional<ModuleIdentity> FakePushModule::getIdentity() {
  return answer<std::optional<ModuleIdentity>>("getIdentity", {}, identity());
}

std::optional<std::string> FakePushModule::contactKey() {
  return answer<std::optional<std::string>>("contactKey", {}, "fake-contact-key");
}

bool FakePushModule::addTag(const std::string& tag) {
  return answer("addTag", {tag}, true);
}

std::optional<PushInterface::Tags> FakePushModule::addTags(const std::vector<std::string>& tags) {
  return answer<std::optional<Tags>>("addTags", {arg(tags)}, Tags(tags.begin(), tags.end()));
}

bool FakePushModule::removeTag(const std::string& tag) {
  return answer("removeTag", {tag}, true);
}

std::optional<PushInterface::Tags> FakePushModule::tags() {
  return answer<std::optional<Tags>>("tags", {}, Tags{"fake-tag"});
}

void FakePushModule::setDeviceToken(const Bytes& token) {
  record("setDeviceToken", {token});
}

void FakePushModule::setDebugLoggingEnabled(bool enabled) {
  record("setDebugLoggingEnabled", {enabled});
}

std::optional<Dictionary> FakePushModule::attributes() {
  return answer<std::optional<Dictionary>>("attributes", {}, Dictionary{{"fake", "attribute"}});
}

std::optional<std::string> FakePushModule::deviceToken() {
  return answer<std::optional<std::string>>("deviceToken", {}, "fake-device-token");
}

std::optional<std::string> FakePushModule::accessToken() {
  return answer<std::optional<std::string>>("accessToken", {}, "fake-access-token");
}

std::optional<std::string> FakePushModule::deviceIdentifier() {
  return answer<std::optional<std::string>>("deviceIdentifier", {}, "fake-device-identifier");
}

void FakePushModule::setNotificationRequest(const NotificationRequest& request) {
  record("setNotificationRequest", {request.identifier});
}

std::optional<NotificationRequest> FakePushModule::notificationRequest() {
  return answer<std::optional<NotificationRequest>>("notificationRequest", {},
                                                    NotificationRequest{.identifier = "fake"});
}

void FakePushModule::setNotificationUserInfo(const Dictionary& userInfo) {
  record("setNotificationUserInfo", {userInfo});
}

Dictionary FakePushModule::notificationUserInfo() {
  return answer("notificationUserInfo", {}, Dictionary{{"fake", "userInfo"}});
}

void FakePushModule::setPushEnabled(bool enabled) {
  record("setPushEnabled", {enabled});
}

bool FakePushModule::pushEnabled() {
  return answer("pushEnabled", {}, true);
}

bool FakePushModule::refresh(FetchCompletionHandler fetchCompletionHandler) {
  if (fetchCompletionHandler)
    fetchCompletionHandler(BackgroundFetchResult::newData);
  return answer("refresh", {arg(fetchCompletionHandler)}, true);
}

void FakePushModule::setRegistrationCallback(RegistrationCallback callback) {
  record("setRegistrationCallback", {arg(callback)});
}

void FakePushModule::unsetRegistrationCallback() {
  record("unsetRegistrationCallback");
}

bool FakePushModule::setSignedString(const std::optional<std::string>& signedString) {
  return answer("setSignedString", {arg(signedString)}, true);
}

std::optional<std::string> FakePushModule::signedString() {
  return answer<std::optional<std::string>>("signedString", {}, "fake-signed-string");
}

}  // namespace vorn::testing

// The registration operations: identity, tags, attributes, tokens, the push-enabled flag.
#include "PushModule.hpp"

namespace push {
namespace {

// Clearing a profile attribute sets it to "", which the back end should not receive as a
// value: an empty text removes the attribute instead.
void mergeAttribute(vorn::Dictionary& attributes, const std::string& key, vorn::Value value) {
  const std::string* text = value.get<std::string>();
  if (text && text->empty())
    attributes.erase(key);
  else
    attributes[key] = std::move(value);
}

}  // namespace

void PushModule::onIdentity(const vorn::IdentityEvent& event) {
  updateRegistration([&event](RegistrationData& data) {
    if (event.profileId())
      data.contactKey = *event.profileId();
    if (event.profileAttributes())
      for (const auto& [key, value] : *event.profileAttributes())
        mergeAttribute(data.attributes, key, value);
    if (event.attributes())
      for (const auto& [key, value] : *event.attributes())
        mergeAttribute(data.attributes, key, value);
  });
}

std::optional<vorn::ModuleIdentity> PushModule::getIdentity() {
  return vorn::ModuleIdentity{appId_, registration_.data().contactKey, registrationId(),
                              std::nullopt};
}

std::optional<std::string> PushModule::contactKey() {
  return registration_.data().contactKey;
}

bool PushModule::addTag(const std::string& tag) {
  if (tag.empty()) {
    log_->debug("An empty tag is not added.");
    return false;
  }
  updateRegistration([&tag](RegistrationData& data) { data.tags.insert(tag); });
  return true;
}

std::optional<PushModule::Tags> PushModule::addTags(const std::vector<std::string>& tags) {
  Tags added;
  updateRegistration([&](RegistrationData& data) {
    for (const std::string& tag : tags)
      if (!tag.empty() && data.tags.insert(tag).second)
        added.insert(tag);
  });
  return added;
}

bool PushModule::removeTag(const std::string& tag) {
  return updateRegistration([&tag](RegistrationData& data) { data.tags.erase(tag); });
}

std::optional<PushModule::Tags> PushModule::tags() {
  return registration_.data().tags;
}

void PushModule::setDeviceToken(const vorn::Bytes& token) {
  const std::string hex = hexText(token);
  log_->redact(hex);
  updateRegistration([&hex](RegistrationData& data) { data.deviceToken = hex; });
}

std::optional<vorn::Dictionary> PushModule::attributes() {
  return registration_.data().attributes;
}

std::optional<std::string> PushModule::deviceToken() {
  return registration_.data().deviceToken;
}

std::optional<std::string> PushModule::accessToken() {
  return authenticator_->accessToken();
}

std::optional<std::string> PushModule::deviceIdentifier() {
  const std::string id = registrationId();
  return id.empty() ? std::nullopt : std::optional<std::string>(id);
}

void PushModule::setPushEnabled(bool enabled) {
  updateRegistration([enabled](RegistrationData& data) { data.pushEnabled = enabled; });
}

bool PushModule::pushEnabled() {
  return registration_.data().pushEnabled;
}

void PushModule::setRegistrationCallback(RegistrationCallback callback) {
  std::lock_guard lock(mutex_);
  registrationCallback_ = std::move(callback);
}

void PushModule::unsetRegistrationCallback() {
  std::lock_guard lock(mutex_);
  registrationCallback_ = nullptr;
}

}  // namespace push

#include "CdpProfile.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace cdp {
namespace {

constexpr std::string_view kConsentKey = "consent";
constexpr std::string_view kProfileIdKey = "profileId";
constexpr std::string_view kAttributesKey = "profileAttributes";

std::map<std::string, std::string> parseAttributes(const std::optional<std::string>& text) {
  std::map<std::string, std::string> attributes;
  if (!text)
    return attributes;
  const auto json = nlohmann::json::parse(*text, nullptr, false);
  if (!json.is_object())
    return attributes;
  for (const auto& [key, value] : json.items()) {
    if (value.is_string())
      attributes[key] = value.get<std::string>();
  }
  return attributes;
}

std::string valueText(const vorn::Value& value) {
  if (const auto* text = value.get<std::string>())
    return *text;
  return vorn::toJson(value).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

CdpProfile::CdpProfile(std::shared_ptr<vorn::SecurePrefs> prefs) : prefs_(std::move(prefs)) {
  if (!prefs_)
    return;
  if (auto consent = prefs_->stringFor(kConsentKey))
    consent_ = vorn::consentFrom(*consent);
  profileId_ = prefs_->stringFor(kProfileIdKey);
  attributes_ = parseAttributes(prefs_->stringFor(kAttributesKey));
}

vorn::Consent CdpProfile::consent() const {
  std::lock_guard lock(mutex_);
  return consent_;
}

void CdpProfile::setConsent(vorn::Consent consent) {
  std::lock_guard lock(mutex_);
  consent_ = consent;
  if (prefs_)
    prefs_->setString(vorn::rawValue(consent), kConsentKey);
}

void CdpProfile::apply(const vorn::IdentityEvent& event) {
  std::lock_guard lock(mutex_);
  if (event.profileId()) {
    profileId_ = event.profileId();
    if (prefs_)
      prefs_->setString(*profileId_, kProfileIdKey);
  } else if (event.profileAttributes()) {
    merge(*event.profileAttributes());
  } else if (event.attributes()) {
    std::map<std::string, std::string> changes;
    for (const auto& [key, value] : *event.attributes())
      changes[key] = valueText(value);
    merge(changes);
  }
}

std::optional<std::string> CdpProfile::profileId() const {
  std::lock_guard lock(mutex_);
  return profileId_;
}

std::map<std::string, std::string> CdpProfile::attributes() const {
  std::lock_guard lock(mutex_);
  return attributes_;
}

std::vector<std::string> CdpProfile::secrets() const {
  std::lock_guard lock(mutex_);
  std::vector<std::string> secrets;
  if (profileId_ && !profileId_->empty())
    secrets.push_back(*profileId_);
  for (const auto& [key, value] : attributes_)
    secrets.push_back(value);
  // Longest first: a value that contains another must be redacted whole, not around it.
  std::stable_sort(secrets.begin(), secrets.end(),
                   [](const auto& a, const auto& b) { return a.size() > b.size(); });
  return secrets;
}

void CdpProfile::merge(const std::map<std::string, std::string>& changes) {
  for (const auto& [key, value] : changes) {
    if (value.empty())
      attributes_.erase(key);
    else
      attributes_[key] = value;
  }
  storeAttributes();
}

void CdpProfile::storeAttributes() {
  if (!prefs_)
    return;
  const std::string text =
      nlohmann::json(attributes_).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  prefs_->setString(text, kAttributesKey);
}

}  // namespace cdp

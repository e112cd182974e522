// The module's own settings: switches, texts it keeps for the app, and the data policy reset.
// Each is kept in the module's secure preferences, so it survives a restart.
#include "PushModule.hpp"

namespace push {
namespace {

constexpr std::string_view kAnalyticsKey = "analyticsEnabled";
constexpr std::string_view kPiAnalyticsKey = "piAnalyticsEnabled";
constexpr std::string_view kInboxKey = "inboxEnabled";
constexpr std::string_view kDebugLoggingKey = "debugLoggingEnabled";
constexpr std::string_view kPiIdentifierKey = "piIdentifier";
constexpr std::string_view kSignedStringKey = "signedString";

}  // namespace

bool PushModule::flag(std::string_view key, bool fallback) const {
  return prefs_ ? prefs_->boolFor(key).value_or(fallback) : fallback;
}

void PushModule::setFlag(std::string_view key, bool value) {
  if (prefs_)
    prefs_->setBool(value, key);
}

// Absent removes the text; the answer tells whether the store now holds what was asked.
bool PushModule::setText(std::string_view key, const std::optional<std::string>& text) {
  if (!prefs_)
    return false;
  return text ? prefs_->setString(*text, key) : prefs_->remove(key);
}

void PushModule::setDebugLoggingEnabled(bool enabled) {
  setFlag(kDebugLoggingKey, enabled);
  log_->debug(std::string("Debug logging ") + (enabled ? "enabled" : "disabled") +
              "; the SDK's log level decides what is written.");
}

bool PushModule::setSignedString(const std::optional<std::string>& signedString) {
  return setText(kSignedStringKey, signedString);
}

std::optional<std::string> PushModule::signedString() {
  return prefs_ ? prefs_->stringFor(kSignedStringKey) : std::nullopt;
}

bool PushModule::setPiIdentifier(const std::optional<std::string>& identifier) {
  return setText(kPiIdentifierKey, identifier);
}

std::optional<std::string> PushModule::piIdentifier() {
  return prefs_ ? prefs_->stringFor(kPiIdentifierKey) : std::nullopt;
}

bool PushModule::isAnalyticsEnabled() {
  return flag(kAnalyticsKey, true);
}

void PushModule::setAnalyticsEnabled(bool enabled) {
  setFlag(kAnalyticsKey, enabled);
}

bool PushModule::isPiAnalyticsEnabled() {
  return flag(kPiAnalyticsKey, true);
}

void PushModule::setPiAnalyticsEnabled(bool enabled) {
  setFlag(kPiAnalyticsKey, enabled);
}

bool PushModule::isInboxEnabled() {
  return flag(kInboxKey, true);
}

void PushModule::setInboxEnabled(bool enabled) {
  setFlag(kInboxKey, enabled);
}

// Forgets what the module learnt about the contact (contact key, attributes, tags, the pi
// identifier, the inbox) and registers the device without it; the device token stays.
bool PushModule::resetDataPolicy() {
  updateRegistration([](RegistrationData& data) {
    data.contactKey.reset();
    data.attributes.clear();
    data.tags.clear();
  });
  setText(kPiIdentifierKey, std::nullopt);
  inbox_.replace({});
  log_->debug("Data policy reset: contact data forgotten.");
  return true;
}

}  // namespace push

#include "vorn/identity/IDENTITY.hpp"

#include <utility>

#include "identity/Descriptions.hpp"
#include "identity/ModuleReadiness.hpp"
#include "identity/RawModules.hpp"
#include "vorn/identity/CoreIdentity.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/messaging/EventBus.hpp"

namespace vorn {
namespace {

// "Setting `<value>` as <what> for <module> <outcome>", the line of a one-module call.
std::string settingLine(const std::string& value, std::string_view what, ModuleName module,
                        std::string_view outcome) {
  return "Setting `" + value + "` as " + std::string(what) + " for " +
         std::string(rawValue(module)) + " " + std::string(outcome);
}

// `describeValue` and `makeEvent` run only when needed, so a quiet logger or a module that
// is not ready costs no description and no event.
template <class Describe, class MakeEvent>
void publishToOne(ModuleName module, std::string_view what, Describe describeValue,
                  MakeEvent makeEvent) {
  if (!detail::isReadyForIdentity(module)) {
    VORN_LOG_DEBUG(LoggerCategory::identity, settingLine(describeValue(), what, module, "failed."));
    return;
  }
  VORN_LOG_DEBUG(LoggerCategory::identity,
                 settingLine(describeValue(), what, module, "triggered."));
  EventBus::publishTo(module, MessageProducer::sdk, makeEvent());
}

void publishProfileIdTo(ModuleName module, std::string_view id) {
  publishToOne(
      module, "profileId", [&] { return std::string(id); },
      [&] { return IdentityEvent::withProfileId(std::string(id)); });
}

void publishAttributesTo(ModuleName module, const StringDictionary& attributes) {
  publishToOne(
      module, "profile attributes", [&] { return detail::describe(attributes); },
      [&] { return IdentityEvent::withProfileAttributes(attributes); });
}

}  // namespace

std::shared_ptr<IDENTITY> IDENTITY::shared() {
  static const auto* const instance = new std::shared_ptr<IDENTITY>(std::make_shared<IDENTITY>());
  return *instance;
}

std::string IDENTITY::toJson() const {
  return CoreIdentity::shared().toJson();
}

void IDENTITY::setProfileId(std::string_view id) const {
  VORN_LOG_DEBUG(
      LoggerCategory::identity,
      "Setting `" + std::string(id) + "` as profileId for all subscribed modules triggered.");
  EventBus::publish(MessageProducer::sdk, IdentityEvent::withProfileId(std::string(id)));
}

void IDENTITY::setProfileId(std::string_view id, const std::vector<ModuleName>& modules) const {
  for (const ModuleName module : modules)
    publishProfileIdTo(module, id);
}

void IDENTITY::setProfileId(const ProfileIds& ids) const {
  for (const auto& [module, id] : ids)
    publishProfileIdTo(module, id);
}

void IDENTITY::setProfileId(std::string_view profile, const std::vector<int>& rawModules) const {
  if (const auto modules = detail::modulesFromInts(rawModules))
    setProfileId(profile, *modules);
}

void IDENTITY::setProfileId(const RawProfileIds& profiles) const {
  if (const auto ids = detail::modulesFromIntKeys(profiles))
    setProfileId(*ids);
}

void IDENTITY::setProfileAttributes(const StringDictionary& attributes) const {
  VORN_LOG_DEBUG(LoggerCategory::identity, "Setting `" + detail::describe(attributes) +
                                               "` as attributes for all modules triggered.");
  EventBus::publish(MessageProducer::sdk, IdentityEvent::withProfileAttributes(attributes));
}

void IDENTITY::setProfileAttribute(std::string_view key, std::string_view value,
                                   const std::vector<ModuleName>& modules) const {
  setProfileAttributes(StringDictionary{{std::string(key), std::string(value)}}, modules);
}

void IDENTITY::setProfileAttributes(const StringDictionary& attributes,
                                    const std::vector<ModuleName>& modules) const {
  for (const ModuleName module : modules)
    publishAttributesTo(module, attributes);
}

void IDENTITY::setProfileAttributes(const ModuleAttributes& attributes) const {
  for (const auto& [module, dictionary] : attributes)
    publishAttributesTo(module, dictionary);
}

void IDENTITY::setProfileAttributesNamed(const StringDictionary& attributes,
                                         const std::vector<int>& rawModules) const {
  if (const auto modules = detail::modulesFromInts(rawModules))
    setProfileAttributes(attributes, *modules);
}

void IDENTITY::setProfileAttributesNamed(const RawModuleAttributes& attributes) const {
  if (const auto perModule = detail::modulesFromIntKeys(attributes))
    setProfileAttributes(*perModule);
}

void IDENTITY::clearProfileAttribute(std::string_view key) const {
  clearProfileAttributes({std::string(key)});
}

void IDENTITY::clearProfileAttributes(const std::vector<std::string>& keys) const {
  VORN_LOG_DEBUG(LoggerCategory::identity,
                 "Clearing following profile attributes: " + detail::describe(keys));
  StringDictionary cleared;
  for (const std::string& key : keys)
    cleared.insert_or_assign(key, std::string());
  setProfileAttributes(cleared);
}

}  // namespace vorn

#include "vorn/events/IdentityEvent.hpp"

namespace vorn {

std::shared_ptr<IdentityEvent> IdentityEvent::withProfileId(std::string profileId) {
  return std::shared_ptr<IdentityEvent>(
      new IdentityEvent(std::move(profileId), std::nullopt, std::nullopt));
}

std::shared_ptr<IdentityEvent> IdentityEvent::withProfileAttributes(
    StringDictionary profileAttributes) {
  return std::shared_ptr<IdentityEvent>(
      new IdentityEvent(std::nullopt, std::move(profileAttributes), std::nullopt));
}

std::shared_ptr<IdentityEvent> IdentityEvent::withAttributes(Dictionary attributes) {
  return std::shared_ptr<IdentityEvent>(
      new IdentityEvent(std::nullopt, std::nullopt, std::move(attributes)));
}

IdentityEvent::IdentityEvent(std::optional<std::string> profileId,
                             std::optional<StringDictionary> profileAttributes,
                             std::optional<Dictionary> attributes)
    : Event(std::string(kName), EventCategory::identity, std::move(attributes)),
      profileId_(std::move(profileId)),
      profileAttributes_(std::move(profileAttributes)) {}

}  // namespace vorn

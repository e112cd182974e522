#include "vorn/events/CustomEvent.hpp"

#include "base/Text.hpp"
#include "vorn/logging/Log.hpp"

namespace vorn {
namespace {

bool isAcceptedName(const std::string& trimmedName) {
  return !trimmedName.empty() && trimmedName.front() != '$';
}

bool isAcceptedKey(const std::string& trimmedKey) {
  return isAcceptedName(trimmedKey) && trimmedKey.find('.') == std::string::npos;
}

Dictionary cleanedAttributes(const Dictionary& attributes) {
  Dictionary cleaned;
  for (const auto& [key, value] : attributes) {
    std::string trimmedKey = detail::trimmed(key);
    if (!isAcceptedKey(trimmedKey)) {
      VORN_LOG_DEBUG(LoggerCategory::event,
                     "    The parameter key must not be empty, contain only whitespace "
                     "characters, any dots or leading $.\n    The `" +
                         trimmedKey + "` attribute was dropped.");
      continue;
    }
    cleaned.insert_or_assign(std::move(trimmedKey), value);
  }
  return cleaned;
}

}  // namespace

std::shared_ptr<CustomEvent> CustomEvent::create(std::string_view name,
                                                 std::optional<Dictionary> attributes) {
  std::string trimmedName = detail::trimmed(name);
  if (!isAcceptedName(trimmedName)) {
    VORN_LOG_DEBUG(LoggerCategory::event,
                   "The event name must not be empty, contain only whitespace characters or "
                   "leading $. The `" +
                       trimmedName + "` event was not created.");
    return nullptr;
  }
  if (attributes)
    attributes = cleanedAttributes(*attributes);
  return std::shared_ptr<CustomEvent>(
      new CustomEvent(std::move(trimmedName), std::move(attributes)));
}

CustomEvent::CustomEvent(std::string name, std::optional<Dictionary> attributes)
    : Event(std::move(name), EventCategory::engagement, std::move(attributes)) {}

}  // namespace vorn

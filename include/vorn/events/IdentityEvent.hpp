// IdentityEvent: tells the modules that the contact's identity changed. Its name is always
// "IdentityEvent" and its category `identity`.
//
// Exactly one of profileId(), profileAttributes() and attributes() is present, chosen by the
// factory used. Input is carried as passed: nothing is trimmed or checked, so an empty
// profile id or keys with dots stay as they are.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/events/Event.hpp"

namespace vorn {

using StringDictionary = std::map<std::string, std::string>;

class VORN_API IdentityEvent final : public Event {
 public:
  static constexpr std::string_view kName = "IdentityEvent";

  static std::shared_ptr<IdentityEvent> withProfileId(std::string profileId);
  static std::shared_ptr<IdentityEvent> withProfileAttributes(StringDictionary profileAttributes);
  static std::shared_ptr<IdentityEvent> withAttributes(Dictionary attributes);

  const std::optional<std::string>& profileId() const noexcept { return profileId_; }
  const std::optional<StringDictionary>& profileAttributes() const noexcept {
    return profileAttributes_;
  }

 private:
  IdentityEvent(std::optional<std::string> profileId,
                std::optional<StringDictionary> profileAttributes,
                std::optional<Dictionary> attributes);

  const std::optional<std::string> profileId_;
  const std::optional<StringDictionary> profileAttributes_;
};

}  // namespace vorn

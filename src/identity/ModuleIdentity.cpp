#include "vorn/identity/ModuleIdentity.hpp"

#include <nlohmann/json.hpp>

namespace vorn {

std::optional<std::string> toJsonText(const ModuleIdentity& identity) {
  nlohmann::json object = nlohmann::json::object();
  object["applicationId"] = identity.applicationId;
  if (identity.profileId)
    object["profileId"] = *identity.profileId;
  if (identity.installationId)
    object["installationId"] = *identity.installationId;
  if (identity.customProperties)
    object["customProperties"] = toJson(*identity.customProperties);
  try {
    return object.dump();
  } catch (const nlohmann::json::exception&) {
    // Only malformed UTF-8 gets here; replacing it would report a different identity.
    return std::nullopt;
  }
}

}  // namespace vorn

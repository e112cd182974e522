// ModuleIdentity: what a feature module reports about who it knows the user to be, and
// the serialiser that turns it into the JSON object IDENTITY::toJson() embeds per module.
//
// The object always carries "applicationId"; "profileId", "installationId" and
// "customProperties" appear only when present. Plain value type; the serialiser is pure
// and thread-safe.
#pragma once

#include <optional>
#include <string>

#include "vorn/base/Export.hpp"
#include "vorn/base/Value.hpp"

namespace vorn {

struct ModuleIdentity {
  std::string applicationId;
  std::optional<std::string> profileId;
  std::optional<std::string> installationId;
  /// The module's own custom properties; absent when the module has nothing to add.
  std::optional<Value> customProperties;

  bool operator==(const ModuleIdentity&) const = default;
};

/// The identity as compact JSON text; absent when a text field is not valid UTF-8, since
/// that cannot be written as JSON without changing it.
VORN_API std::optional<std::string> toJsonText(const ModuleIdentity& identity);

}  // namespace vorn

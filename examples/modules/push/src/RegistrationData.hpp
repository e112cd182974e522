// RegistrationData: what the module registers for this device, and its two JSON forms: the
// stored form kept in the secure preferences, and the body sent to /v1/registration.
//
// Plain value type.
#pragma once

#include <optional>
#include <set>
#include <string>

#include <nlohmann/json.hpp>

#include "vorn/base/Value.hpp"

namespace push {

struct RegistrationData {
  std::optional<std::string> deviceToken;  // lower-case hex
  std::set<std::string> tags;
  vorn::Dictionary attributes;
  std::optional<std::string> contactKey;
  bool pushEnabled = false;

  bool operator==(const RegistrationData&) const = default;
};

/// The stored form; fromStored() gives the defaults for anything missing or malformed.
nlohmann::json toStored(const RegistrationData& data);
RegistrationData fromStored(const nlohmann::json& stored);

/// The body of /v1/registration: "registrationId", "deviceToken", "tags", "attributes",
/// "contactKey", "pushEnabled", "appVersion"; absent texts are null.
vorn::Dictionary registrationBody(const RegistrationData& data, const std::string& registrationId,
                                  const std::optional<std::string>& appVersion);

/// A JSON value as a vorn::Value (numbers: integers when whole and in range, else doubles).
vorn::Value valueFromJson(const nlohmann::json& json);

/// Lower-case hexadecimal text of `bytes`.
std::string hexText(const vorn::Bytes& bytes);

}  // namespace push

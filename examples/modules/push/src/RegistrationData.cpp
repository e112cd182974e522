#include "RegistrationData.hpp"

namespace push {
namespace {

vorn::Value optionalText(const std::optional<std::string>& text) {
  return text ? vorn::Value(*text) : vorn::Value();
}

std::optional<std::string> textAt(const nlohmann::json& object, const char* key) {
  const auto it = object.find(key);
  if (it == object.end() || !it->is_string())
    return std::nullopt;
  return it->get<std::string>();
}

}  // namespace

nlohmann::json toStored(const RegistrationData& data) {
  nlohmann::json stored = {{"tags", data.tags},
                           {"attributes", vorn::toJson(data.attributes)},
                           {"pushEnabled", data.pushEnabled}};
  if (data.deviceToken)
    stored["deviceToken"] = *data.deviceToken;
  if (data.contactKey)
    stored["contactKey"] = *data.contactKey;
  return stored;
}

RegistrationData fromStored(const nlohmann::json& stored) {
  RegistrationData data;
  if (!stored.is_object())
    return data;
  data.deviceToken = textAt(stored, "deviceToken");
  data.contactKey = textAt(stored, "contactKey");
  if (const auto tags = stored.find("tags"); tags != stored.end() && tags->is_array()) {
    for (const auto& tag : *tags)
      if (tag.is_string())
        data.tags.insert(tag.get<std::string>());
  }
  if (const auto attributes = stored.find("attributes");
      attributes != stored.end() && attributes->is_object()) {
    for (const auto& [key, value] : attributes->items())
      data.attributes[key] = valueFromJson(value);
  }
  const auto enabled = stored.find("pushEnabled");
  data.pushEnabled = enabled != stored.end() && enabled->is_boolean() && enabled->get<bool>();
  return data;
}

vorn::Dictionary registrationBody(const RegistrationData& data, const std::string& registrationId,
                                  const std::optional<std::string>& appVersion) {
  vorn::Array tags(data.tags.begin(), data.tags.end());
  return {{"registrationId", registrationId},
          {"deviceToken", optionalText(data.deviceToken)},
          {"tags", std::move(tags)},
          {"attributes", data.attributes},
          {"contactKey", optionalText(data.contactKey)},
          {"pushEnabled", data.pushEnabled},
          {"appVersion", optionalText(appVersion)}};
}

vorn::Value valueFromJson(const nlohmann::json& json) {
  switch (json.type()) {
    case nlohmann::json::value_t::boolean:
      return json.get<bool>();
    case nlohmann::json::value_t::number_integer:
      return json.get<std::int64_t>();
    case nlohmann::json::value_t::number_unsigned:
      return json.get<std::uint64_t>() <= INT64_MAX ? vorn::Value(json.get<std::int64_t>())
                                                    : vorn::Value(json.get<double>());
    case nlohmann::json::value_t::number_float:
      return json.get<double>();
    case nlohmann::json::value_t::string:
      return json.get<std::string>();
    case nlohmann::json::value_t::array: {
      vorn::Array array;
      for (const auto& element : json)
        array.push_back(valueFromJson(element));
      return array;
    }
    case nlohmann::json::value_t::object: {
      vorn::Dictionary dictionary;
      for (const auto& [key, value] : json.items())
        dictionary[key] = valueFromJson(value);
      return dictionary;
    }
    default:
      return {};
  }
}

std::string hexText(const vorn::Bytes& bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const std::uint8_t byte : bytes) {
    text.push_back(kDigits[byte >> 4]);
    text.push_back(kDigits[byte & 0x0F]);
  }
  return text;
}

}  // namespace push

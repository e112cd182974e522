#include "platform/sqlite/KeychainAttributes.hpp"

#include <nlohmann/json.hpp>

#include "base/CborDepth.hpp"

namespace vorn::platform {
namespace {

using Json = nlohmann::json;

// A map of plain values: anything nested deeper was not written by the store.
constexpr std::size_t kMaxDepth = 1;

std::optional<KeychainDictionary> attributesOf(const Json& map) {
  if (!map.is_object())
    return std::nullopt;
  KeychainDictionary attributes;
  for (const auto& [name, value] : map.items()) {
    if (value.is_string())
      attributes.emplace(name, value.get<std::string>());
    else if (value.is_binary())
      attributes.emplace(name, KeychainData(value.get_binary()));
    else
      return std::nullopt;
  }
  return attributes;
}

}  // namespace

std::vector<std::uint8_t> encodeKeychainAttributes(const KeychainDictionary& attributes) {
  Json map = Json::object();
  for (const auto& [name, value] : attributes) {
    if (const auto* text = std::get_if<std::string>(&value))
      map[name] = *text;
    else
      map[name] = Json::binary(std::get<KeychainData>(value));
  }
  return Json::to_cbor(map);
}

std::optional<KeychainDictionary> decodeKeychainAttributes(ByteView cbor) noexcept {
  if (!isShallowCbor(cbor, kMaxDepth))
    return std::nullopt;
  try {
    return attributesOf(Json::from_cbor(cbor.begin(), cbor.end(), true, false));
  } catch (...) {
    return std::nullopt;
  }
}

}  // namespace vorn::platform

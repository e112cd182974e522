#include "storage/keychain/KeychainDictionaries.hpp"

namespace vorn::detail {
namespace {

std::string asText(const KeychainValue& value) {
  if (const auto* text = std::get_if<std::string>(&value))
    return *text;
  const auto& bytes = std::get<KeychainData>(value);
  return std::string(bytes.begin(), bytes.end());
}

KeychainData asData(const KeychainValue& value) {
  if (const auto* bytes = std::get_if<KeychainData>(&value))
    return *bytes;
  const auto& text = std::get<std::string>(value);
  return KeychainData(text.begin(), text.end());
}

}  // namespace

KeychainDictionary dictionaryFromItem(const KeychainItem& item) {
  KeychainDictionary dictionary = item.attributes;
  dictionary[std::string(kSecClass)] = std::string(kSecClassGenericPassword);
  if (item.service)
    dictionary[std::string(kSecAttrService)] = *item.service;
  if (item.account)
    dictionary[std::string(kSecAttrAccount)] = *item.account;
  if (item.accessible)
    dictionary[std::string(kSecAttrAccessible)] = *item.accessible;
  if (item.data)
    dictionary[std::string(kSecValueData)] = *item.data;
  return dictionary;
}

KeychainItem itemFromDictionary(const KeychainDictionary& dictionary) {
  KeychainItem item;
  for (const auto& [name, value] : dictionary) {
    if (name == kSecAttrService)
      item.service = asText(value);
    else if (name == kSecAttrAccount)
      item.account = asText(value);
    else if (name == kSecAttrAccessible)
      item.accessible = asText(value);
    else if (name == kSecValueData)
      item.data = asData(value);
    else if (name != kSecClass && name != kSecAttrAccessControl)
      item.attributes.emplace(name, value);
  }
  return item;
}

std::optional<std::string> textOf(const KeychainDictionary& dictionary, std::string_view key) {
  const auto entry = dictionary.find(key);
  if (entry == dictionary.end())
    return std::nullopt;
  return asText(entry->second);
}

}  // namespace vorn::detail

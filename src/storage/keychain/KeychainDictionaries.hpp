// Conversions between the item wrapper's attribute dictionaries and the key store's item
// records, so the wrapper can keep the platform's dictionary shape while the store keeps
// typed fields.
#pragma once

#include "vorn/platform/KeychainItem.hpp"

namespace vorn::detail {

/// The attributes of a stored item as a dictionary (class, service, account when present,
/// accessibility, further attributes, value under kSecValueData when present).
KeychainDictionary dictionaryFromItem(const KeychainItem& item);

/// The item a dictionary describes; the class and access-control entries are dropped.
KeychainItem itemFromDictionary(const KeychainDictionary& dictionary);

/// The text of an attribute value (bytes read as they are); nothing when absent.
std::optional<std::string> textOf(const KeychainDictionary& dictionary, std::string_view key);

}  // namespace vorn::detail

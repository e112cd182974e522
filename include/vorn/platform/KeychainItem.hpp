// The vocabulary of generic-password key store items: attribute names, accessibility values,
// the item record and the search query.
//
// An item is identified by its service and its account; an item stored without an account
// and one stored with the empty account are the same item. Attribute names and
// accessibility values are the short codes the host platform stores, so dictionaries built
// from them read the same as the platform's own.
//
// Plain value types; no locking needed.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vorn {

/// Raw bytes as stored in the key store (item values, key material).
using KeychainData = std::vector<std::uint8_t>;

/// One attribute value: text or bytes.
using KeychainValue = std::variant<std::string, KeychainData>;

/// Attribute name → value; the item wrapper's in-memory copy of an item.
using KeychainDictionary = std::map<std::string, KeychainValue, std::less<>>;

// Attribute names.
inline constexpr std::string_view kSecClass = "class";
inline constexpr std::string_view kSecAttrService = "svce";
inline constexpr std::string_view kSecAttrAccount = "acct";
inline constexpr std::string_view kSecAttrAccessible = "pdmn";
inline constexpr std::string_view kSecAttrAccessControl = "accc";
inline constexpr std::string_view kSecValueData = "v_Data";

// The only item class this store keeps.
inline constexpr std::string_view kSecClassGenericPassword = "genp";

// Accessibility values.
inline constexpr std::string_view kSecAttrAccessibleWhenUnlocked = "ak";
inline constexpr std::string_view kSecAttrAccessibleAfterFirstUnlock = "ck";
inline constexpr std::string_view kSecAttrAccessibleAlways = "dk";
inline constexpr std::string_view kSecAttrAccessibleWhenPasscodeSetThisDeviceOnly = "akpu";
inline constexpr std::string_view kSecAttrAccessibleWhenUnlockedThisDeviceOnly = "aku";
inline constexpr std::string_view kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly = "cku";
inline constexpr std::string_view kSecAttrAccessibleAlwaysThisDeviceOnly = "dku";

/// A generic-password item, as added, as changed by an update, or as returned by a search.
///
/// Adding: `service` and `account` name the item (absent means empty), `accessible` absent
/// means kSecAttrAccessibleWhenUnlocked, `data` absent means the item has no value.
/// Updating: only the fields that are present (and the listed `attributes`) change.
/// Searching: `service`, `account` and `accessible` are filled when attributes were asked
/// for, `data` when data was asked for.
struct KeychainItem {
  std::optional<std::string> service;
  std::optional<std::string> account;
  std::optional<std::string> accessible;
  std::optional<KeychainData> data;
  /// Any further attributes (label, comment, generic data, ...), by attribute name.
  KeychainDictionary attributes;

  friend bool operator==(const KeychainItem&, const KeychainItem&) = default;
};

enum class MatchLimit : int {
  one = 0,
  all = 1,
};

/// Which items a search, update or delete applies to: every generic-password item whose
/// service and account equal the given ones (an absent field matches any value).
/// `matchLimit`, `returnAttributes` and `returnData` only shape what a search returns.
struct KeychainQuery {
  std::optional<std::string> service;
  std::optional<std::string> account;
  MatchLimit matchLimit = MatchLimit::one;
  bool returnAttributes = false;
  bool returnData = false;
};

}  // namespace vorn

// An asymmetric key kept in the key store, found by its application tag.
//
// The store keeps the key material as opaque bytes (DER, as the crypto layer encodes it)
// together with its type, class and size; it never parses them. The tag is the UTF-8 text
// the crypto layer builds from a prefix and a key name. Plain value type.
#pragma once

#include <optional>
#include <string>

#include "vorn/platform/KeychainItem.hpp"

namespace vorn {

enum class KeychainKeyType : int {
  rsa = 0,
  ec = 1,
};

enum class KeychainKeyClass : int {
  publicKey = 0,
  privateKey = 1,
};

struct KeychainKey {
  std::string applicationTag;
  KeychainKeyType keyType = KeychainKeyType::rsa;
  KeychainKeyClass keyClass = KeychainKeyClass::privateKey;
  int keySizeInBits = 0;
  /// The accessibility value; absent means kSecAttrAccessibleWhenUnlocked.
  std::optional<std::string> accessible;
  KeychainData keyData;

  friend bool operator==(const KeychainKey&, const KeychainKey&) = default;
};

}  // namespace vorn

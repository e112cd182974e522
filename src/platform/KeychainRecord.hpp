// Helpers shared by the key store backends: how an item's optional fields are stored and
// returned, so both backends answer searches identically.
#pragma once

#include <string>

#include "vorn/platform/KeychainItem.hpp"

namespace vorn::platform {

/// An absent account is stored as the empty text, and read back as absent.
inline std::string storedAccount(const std::optional<std::string>& account) {
  return account.value_or(std::string());
}
inline std::optional<std::string> returnedAccount(const std::string& stored) {
  if (stored.empty())
    return std::nullopt;
  return stored;
}
/// The accessibility an item gets when the caller names none.
inline std::string storedAccessible(const std::optional<std::string>& accessible) {
  return accessible ? *accessible : std::string(kSecAttrAccessibleWhenUnlocked);
}

}  // namespace vorn::platform

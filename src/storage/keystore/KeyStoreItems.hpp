// The key store's generic-password items (no account), read and written through the keychain
// item layer so that they share its cache and its write lock.
#pragma once

#include <optional>
#include <string_view>

#include "vorn/base/Bytes.hpp"
#include "vorn/platform/KeychainStatus.hpp"

namespace vorn {

/// The item's value; no value when the item or its value is absent.
std::optional<Bytes> readItemValue(std::string_view service);
/// Stores `value` as the item's value; the keychain status.
OSStatus writeItemValue(std::string_view service, const Bytes& value);
/// Deletes the item; true when it is gone (also when it never existed).
bool deleteItem(std::string_view service);

}  // namespace vorn

// The key store's generic-password items (no account), read and written through the keychain
// item layer so that they share its cache and its exclusive sections.
#pragma once

#include <string_view>

#include "vorn/base/Bytes.hpp"
#include "vorn/platform/KeychainStatus.hpp"
#include "vorn/platform/ReadResult.hpp"
#include "vorn/storage/keychain/KeychainItems.hpp"

namespace vorn {

/// The item's value as stored now (read again, not taken from the cache): found, absent when
/// the item or its value is missing, or an error when the store could not be read.
ReadResult<Bytes> readItemValue(KeychainItems& items, std::string_view service);
/// Stores `value` as the item's value; the keychain status.
OSStatus writeItemValue(KeychainItems& items, std::string_view service, const Bytes& value);
/// Deletes the item; true when it is gone (also when it never existed).
bool deleteItem(KeychainItems& items, std::string_view service);

}  // namespace vorn

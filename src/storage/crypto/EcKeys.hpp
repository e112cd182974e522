// EC P-256 key pairs kept in a keychain store by tag: the routines behind the EC key
// operations of VORNSDKCryptoUtils. Failures are logged in category `encryption`.
// Thread-safe as far as the store is.
#pragma once

#include <string_view>

#include "vorn/platform/KeychainStore.hpp"
#include "vorn/storage/crypto/AsymmetricKey.hpp"

namespace vorn::ec {

/// Makes a pair and stores both halves under the name's tags.
void createPair(KeychainStore& store, std::string_view name, std::string_view accessibleAttribute);
void deletePair(KeychainStore& store, std::string_view name);
/// The key stored under `tag`; null (and an error line) when none is or it does not decode.
KeyRef keyRefWithTag(KeychainStore& store, std::string_view tag);

}  // namespace vorn::ec

// RSA key pairs kept in a keychain store by tag, and PKCS#1 v1.5 encryption with them: the
// routines behind the RSA operations of VORNSDKCryptoUtils. Failures are logged in category
// `encryption` and give no value. Thread-safe as far as the store is.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "vorn/base/Bytes.hpp"
#include "vorn/platform/KeychainStore.hpp"
#include "vorn/storage/crypto/AsymmetricKey.hpp"

namespace vorn::rsa {

/// Makes a pair of `keyLength` bits and stores both halves under the name's tags, replacing
/// any earlier pair of that name.
void createPair(KeychainStore& store, std::string_view name, std::size_t keyLength,
                std::string_view accessibleAttribute);
std::optional<Bytes> keyDataWithTag(KeychainStore& store, std::string_view tag,
                                    std::size_t keyLength);
KeyRef keyRefWithTag(KeychainStore& store, std::string_view tag, std::size_t keyLength);
std::optional<Bytes> encrypt(ByteView data, const KeyRef& publicKey);
std::optional<Bytes> decrypt(ByteView data, const KeyRef& privateKey);

}  // namespace vorn::rsa

// The EC P-256 pairs behind secure keys, kept by application tag in a given key store (the
// tags and the key representation are the crypto layer's, so either layer finds the other's
// pairs in the same store).
//
// A lookup tells a pair that is there from one that is not and from one that could not be
// read, so that nobody replaces a pair merely because the store did not answer.
#pragma once

#include <string_view>

#include "vorn/platform/KeychainStore.hpp"
#include "vorn/platform/ReadResult.hpp"
#include "vorn/storage/crypto/AsymmetricKey.hpp"

namespace vorn {

struct SecureKeyPair {
  KeyRef publicKey;
  KeyRef privateKey;
};

/// Both halves of the pair `name`: found, absent when either half is missing (or not an EC
/// key), an error when the store could not answer for one.
ReadResult<SecureKeyPair> findSecureKeyPair(KeychainStore& store, std::string_view name);
/// Makes a pair and stores both halves with accessibility `accessible`, replacing any pair of
/// that name; failures are logged.
void createSecureKeyPair(KeychainStore& store, std::string_view name, std::string_view accessible);
/// Deletes both halves; failures other than a missing half are logged.
void deleteSecureKeyPair(KeychainStore& store, std::string_view name);

}  // namespace vorn

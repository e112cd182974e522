// Where the crypto layer keeps key pairs: a keychain store, under application tags made from
// a fixed prefix and the pair's name.
#pragma once

#include <string>
#include <string_view>

#include "vorn/base/Bytes.hpp"
#include "vorn/platform/KeychainStore.hpp"

namespace vorn {

/// "<prefix>.<name>".
std::string keyTag(std::string_view prefix, std::string_view name);

/// Stores one half of a pair under `tag`, replacing any key already there.
OSStatus storeKeyHalf(KeychainStore& store, std::string_view tag, KeychainKeyType type,
                      KeychainKeyClass keyClass, std::size_t bits, std::string_view accessible,
                      Bytes data);
/// Loads the key stored under `tag`; errSecItemNotFound when none (of `bits`, when not 0).
OSStatus loadKeyHalf(KeychainStore& store, std::string_view tag, KeychainKeyType type,
                     std::size_t bits, KeychainKey& key);
OSStatus deleteKeyHalf(KeychainStore& store, std::string_view tag);

}  // namespace vorn

#include "storage/crypto/KeyTags.hpp"

#include "vorn/platform/Platform.hpp"

namespace vorn {

std::string keyTag(std::string_view prefix, std::string_view name) {
  std::string tag(prefix);
  tag += '.';
  tag += name;
  return tag;
}

OSStatus storeKeyHalf(std::string_view tag, KeychainKeyType type, KeychainKeyClass keyClass,
                      std::size_t bits, std::string_view accessible, Bytes data) {
  const auto platform = Platform::current();
  KeychainKey key;
  key.applicationTag = std::string(tag);
  key.keyType = type;
  key.keyClass = keyClass;
  key.keySizeInBits = static_cast<int>(bits);
  key.accessible = std::string(accessible);
  key.keyData = std::move(data);
  platform->keychain->deleteKey(tag);
  return platform->keychain->storeKey(key);
}

OSStatus loadKeyHalf(std::string_view tag, KeychainKeyType type, std::size_t bits,
                     KeychainKey& key) {
  const OSStatus status = Platform::current()->keychain->loadKey(tag, std::nullopt, key);
  if (status != errSecSuccess)
    return status;
  const bool sizeMatches = bits == 0 || key.keySizeInBits == static_cast<int>(bits);
  return key.keyType == type && sizeMatches ? errSecSuccess : errSecItemNotFound;
}

OSStatus deleteKeyHalf(std::string_view tag) {
  return Platform::current()->keychain->deleteKey(tag);
}

}  // namespace vorn

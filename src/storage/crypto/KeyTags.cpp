#include "storage/crypto/KeyTags.hpp"

namespace vorn {

std::string keyTag(std::string_view prefix, std::string_view name) {
  std::string tag(prefix);
  tag += '.';
  tag += name;
  return tag;
}

OSStatus storeKeyHalf(KeychainStore& store, std::string_view tag, KeychainKeyType type,
                      KeychainKeyClass keyClass, std::size_t bits, std::string_view accessible,
                      Bytes data) {
  KeychainKey key;
  key.applicationTag = std::string(tag);
  key.keyType = type;
  key.keyClass = keyClass;
  key.keySizeInBits = static_cast<int>(bits);
  key.accessible = std::string(accessible);
  key.keyData = std::move(data);
  store.deleteKey(tag);
  return store.storeKey(key);
}

OSStatus loadKeyHalf(KeychainStore& store, std::string_view tag, KeychainKeyType type,
                     std::size_t bits, KeychainKey& key) {
  const OSStatus status = store.loadKey(tag, std::nullopt, key);
  if (status != errSecSuccess)
    return status;
  const bool sizeMatches = bits == 0 || key.keySizeInBits == static_cast<int>(bits);
  return key.keyType == type && sizeMatches ? errSecSuccess : errSecItemNotFound;
}

OSStatus deleteKeyHalf(KeychainStore& store, std::string_view tag) {
  return store.deleteKey(tag);
}

}  // namespace vorn

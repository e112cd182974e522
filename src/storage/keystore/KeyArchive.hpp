// The key store's archives: CBOR maps standing in for the host platform's keyed archives.
//
//   archive  = { "$archiver": "VORNKeyedArchiver", "$top": { <archive key>: object } }
//   object   = { "$class": <class name>, <the class's archive keys>: ... }
//
// Classes: VORNEncryptionKey (key data, vector), VORNSecureEncryptionKey (label),
// VORNKeyStoreKey (its encryption key), NSDictionary ("NS.objects": label to VORNKeyStoreKey)
// and NSData ("NS.data"). Decoding never throws and accepts only this shape. A secure key is
// decoded by looking its pair up in the given key store; it is never made there.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Bytes.hpp"
#include "vorn/platform/KeychainStore.hpp"
#include "vorn/storage/keystore/VORNKeyStore.hpp"
#include "vorn/storage/keystore/VORNKeyStoreKey.hpp"

namespace vorn {

/// What a decoder found: `opened` false means the bytes are not an archive at all (`reason`
/// says why); otherwise the object is present when it has the expected class and every key
/// it names was found. `lookupStatus` is the error of a key pair lookup that could not be
/// answered (then the object is absent for now, not for good).
template <class T>
struct Unarchived {
  bool opened = false;
  std::string reason;
  T object{};
  OSStatus lookupStatus = errSecSuccess;
};

Bytes archiveKeyStoreKey(const VORNKeyStoreKey& key, std::string_view archiveKey);
Unarchived<std::shared_ptr<VORNKeyStoreKey>> unarchiveKeyStoreKey(ByteView data,
                                                                  std::string_view archiveKey,
                                                                  KeychainStore& store);

Bytes archiveDictionary(const KeyStoreDictionary& dictionary, std::string_view archiveKey);
Unarchived<std::optional<KeyStoreDictionary>> unarchiveDictionary(ByteView data,
                                                                  std::string_view archiveKey,
                                                                  KeychainStore& store);

Bytes archiveData(ByteView data, std::string_view archiveKey);
Unarchived<std::optional<Bytes>> unarchiveData(ByteView data, std::string_view archiveKey);

}  // namespace vorn

// The key store's archives: CBOR maps standing in for the host platform's keyed archives.
//
//   archive  = { "$archiver": "VORNKeyedArchiver", "$top": { <archive key>: object } }
//   object   = { "$class": <class name>, <the class's archive keys>: ... }
//
// Classes: VORNEncryptionKey (key data, vector), VORNSecureEncryptionKey (label),
// VORNKeyStoreKey (its encryption key), NSDictionary ("NS.objects": label to VORNKeyStoreKey)
// and NSData ("NS.data"). Decoding never throws and accepts only this shape.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Bytes.hpp"
#include "vorn/storage/keystore/VORNKeyStore.hpp"
#include "vorn/storage/keystore/VORNKeyStoreKey.hpp"

namespace vorn {

/// What a decoder found: `opened` false means the bytes are not an archive at all (`reason`
/// says why); otherwise the object is present when it has the expected class.
template <class T>
struct Unarchived {
  bool opened = false;
  std::string reason;
  T object{};
};

Bytes archiveKeyStoreKey(const VORNKeyStoreKey& key, std::string_view archiveKey);
Unarchived<std::shared_ptr<VORNKeyStoreKey>> unarchiveKeyStoreKey(ByteView data,
                                                                  std::string_view archiveKey);

Bytes archiveDictionary(const KeyStoreDictionary& dictionary, std::string_view archiveKey);
Unarchived<std::optional<KeyStoreDictionary>> unarchiveDictionary(ByteView data,
                                                                  std::string_view archiveKey);

Bytes archiveData(ByteView data, std::string_view archiveKey);
Unarchived<std::optional<Bytes>> unarchiveData(ByteView data, std::string_view archiveKey);

}  // namespace vorn

#include "storage/keystore/KeyArchive.hpp"

#include <nlohmann/json.hpp>

#include "base/CborDepth.hpp"
#include "vorn/storage/keystore/VORNSecureEncryptionKey.hpp"

namespace vorn {
namespace {

using Json = nlohmann::json;

constexpr std::string_view kArchiverKey = "$archiver";
constexpr std::string_view kArchiverName = "VORNKeyedArchiver";
constexpr std::string_view kTopKey = "$top";
constexpr std::string_view kClassKey = "$class";
constexpr std::string_view kDictionaryObjectsKey = "NS.objects";
constexpr std::string_view kDataKey = "NS.data";
// Deep enough for the dictionary shape above, shallow enough for any thread's stack.
constexpr std::size_t kMaxDepth = 16;

// The member `key` of `object` when it exists; null otherwise. Never throws.
const Json* member(const Json& object, std::string_view key) {
  if (!object.is_object())
    return nullptr;
  const auto it = object.find(key);
  return it == object.end() ? nullptr : &*it;
}

bool hasClass(const Json& object, std::string_view name) {
  const Json* cls = member(object, kClassKey);
  return cls && cls->is_string() && cls->get_ref<const std::string&>() == name;
}

const Bytes* binaryMember(const Json& object, std::string_view key) {
  const Json* value = member(object, key);
  return value && value->is_binary() ? &value->get_binary() : nullptr;
}

Json encodeEncryptionKey(const VORNEncryptionKey& key) {
  if (const auto* secure = dynamic_cast<const VORNSecureEncryptionKey*>(&key)) {
    return Json{{kClassKey, "VORNSecureEncryptionKey"},
                {kSecureEncryptionKeyLabelArchiveKey, secure->label()}};
  }
  return Json{{kClassKey, "VORNEncryptionKey"},
              {kEncryptionKeyDataArchiveKey, Json::binary(key.key())},
              {kEncryptionKeyIVArchiveKey, Json::binary(key.initializationVector())}};
}

// A secure key is looked up (never made) from its label: an archive must not create keys.
std::shared_ptr<VORNEncryptionKey> decodeEncryptionKey(const Json& object, KeychainStore& store,
                                                       OSStatus& lookupStatus) {
  if (hasClass(object, "VORNSecureEncryptionKey")) {
    const Json* label = member(object, kSecureEncryptionKeyLabelArchiveKey);
    if (!label || !label->is_string())
      return nullptr;
    auto found = VORNSecureEncryptionKey::find(store, label->get_ref<const std::string&>());
    if (found.isError())
      lookupStatus = found.status();
    return std::move(found).valueIfFound().value_or(nullptr);
  }
  const Bytes* key = binaryMember(object, kEncryptionKeyDataArchiveKey);
  const Bytes* iv = binaryMember(object, kEncryptionKeyIVArchiveKey);
  if (!hasClass(object, "VORNEncryptionKey") || !key || !iv)
    return nullptr;
  return std::make_shared<VORNEncryptionKey>(*key, *iv);
}

Json encodeKeyStoreKey(const VORNKeyStoreKey& key) {
  Json object{{kClassKey, "VORNKeyStoreKey"}};
  if (key.encryptionKey())
    object[std::string(kKeyStoreKeyDataArchiveKey)] = encodeEncryptionKey(*key.encryptionKey());
  return object;
}

std::shared_ptr<VORNKeyStoreKey> decodeKeyStoreKey(const Json& object, KeychainStore& store,
                                                   OSStatus& lookupStatus) {
  const Json* inner = member(object, kKeyStoreKeyDataArchiveKey);
  if (!hasClass(object, "VORNKeyStoreKey") || !inner)
    return nullptr;
  auto encryptionKey = decodeEncryptionKey(*inner, store, lookupStatus);
  return encryptionKey ? std::make_shared<VORNKeyStoreKey>(std::move(encryptionKey)) : nullptr;
}

Bytes archive(Json object, std::string_view archiveKey) {
  Json root{{kArchiverKey, kArchiverName}, {kTopKey, Json{{archiveKey, std::move(object)}}}};
  return Json::to_cbor(root);
}

// The object under `archiveKey`, or null; `result` says whether the archive opened.
template <class T>
const Json* open(ByteView data, std::string_view archiveKey, Json& root, Unarchived<T>& result) {
  if (!isShallowCbor(data, kMaxDepth)) {
    result.reason = "the data is not a keyed archive";
    return nullptr;
  }
  try {
    root = Json::from_cbor(data.begin(), data.end(), true, false);
  } catch (const std::exception&) {
    root = Json(Json::value_t::discarded);
  }
  const Json* archiver = member(root, kArchiverKey);
  if (root.is_discarded() || !archiver || !archiver->is_string() ||
      archiver->get_ref<const std::string&>() != kArchiverName) {
    result.reason = "the data is not a keyed archive";
    return nullptr;
  }
  result.opened = true;
  const Json* top = member(root, kTopKey);
  return top ? member(*top, archiveKey) : nullptr;
}

}  // namespace

Bytes archiveKeyStoreKey(const VORNKeyStoreKey& key, std::string_view archiveKey) {
  return archive(encodeKeyStoreKey(key), archiveKey);
}

Unarchived<std::shared_ptr<VORNKeyStoreKey>> unarchiveKeyStoreKey(ByteView data,
                                                                  std::string_view archiveKey,
                                                                  KeychainStore& store) {
  Unarchived<std::shared_ptr<VORNKeyStoreKey>> result;
  Json root;
  if (const Json* object = open(data, archiveKey, root, result))
    result.object = decodeKeyStoreKey(*object, store, result.lookupStatus);
  return result;
}

Bytes archiveDictionary(const KeyStoreDictionary& dictionary, std::string_view archiveKey) {
  Json objects = Json::object();
  for (const auto& [label, key] : dictionary) {
    if (key)
      objects[label] = encodeKeyStoreKey(*key);
  }
  return archive(Json{{kClassKey, "NSDictionary"}, {kDictionaryObjectsKey, std::move(objects)}},
                 archiveKey);
}

Unarchived<std::optional<KeyStoreDictionary>> unarchiveDictionary(ByteView data,
                                                                  std::string_view archiveKey,
                                                                  KeychainStore& store) {
  Unarchived<std::optional<KeyStoreDictionary>> result;
  Json root;
  const Json* object = open(data, archiveKey, root, result);
  const Json* objects = object ? member(*object, kDictionaryObjectsKey) : nullptr;
  if (!object || !hasClass(*object, "NSDictionary") || !objects || !objects->is_object())
    return result;
  KeyStoreDictionary dictionary;
  for (const auto& [label, value] : objects->items()) {
    auto key = decodeKeyStoreKey(value, store, result.lookupStatus);
    if (!key)
      return result;
    dictionary.emplace(label, std::move(key));
  }
  result.object = std::move(dictionary);
  return result;
}

Bytes archiveData(ByteView data, std::string_view archiveKey) {
  return archive(
      Json{{kClassKey, "NSData"}, {kDataKey, Json::binary(Bytes(data.begin(), data.end()))}},
      archiveKey);
}

Unarchived<std::optional<Bytes>> unarchiveData(ByteView data, std::string_view archiveKey) {
  Unarchived<std::optional<Bytes>> result;
  Json root;
  const Json* object = open(data, archiveKey, root, result);
  const Bytes* bytes =
      object && hasClass(*object, "NSData") ? binaryMember(*object, kDataKey) : nullptr;
  if (bytes)
    result.object = *bytes;
  return result;
}

}  // namespace vorn

#include "vorn/storage/keystore/VORNKeyStoreManager.hpp"

#include "storage/keychain/PlatformShared.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/platform/KeychainStatus.hpp"
#include "vorn/storage/keystore/VORNSecureEncryptionKey.hpp"

namespace vorn {

std::shared_ptr<VORNKeyStoreManager> VORNKeyStoreManager::shared() {
  return detail::sharedOnCurrentPlatform<VORNKeyStoreManager>([](const Platform&) {
    return std::make_shared<VORNKeyStoreManager>(KeychainItems::shared(),
                                                 BaseAppIdentifier::shared());
  });
}

VORNKeyStoreManager& VORNKeyStoreManager::sharedInstance() {
  return *shared();
}

VORNKeyStoreManager::VORNKeyStoreManager(std::shared_ptr<KeychainItems> items,
                                         std::shared_ptr<BaseAppIdentifier> baseAppIdentifier)
    : items_(items),
      generatedKeyStore_(
          std::make_shared<VORNGeneratedKeyStore>(std::move(items), std::move(baseAppIdentifier))) {
  run(true, [] {});
}

VORNKeyStoreManager::~VORNKeyStoreManager() = default;

bool VORNKeyStoreManager::run(bool needsStart, const std::function<void()>& body) {
  bool ran = false;
  const OSStatus section = items_->exclusively([&] {
    std::lock_guard lock(mutex_);
    if (needsStart && !startIfNeeded())
      return;
    body();
    ran = true;
  });
  return section == errSecSuccess && ran;
}

bool VORNKeyStoreManager::startIfNeeded() {
  if (started_)
    return true;
  // Read as stored now: another process may have started the store since this one looked.
  const auto existing = generatedKeyStore_->reloadKeyStoreKey();
  const auto current = existing.isFound() ? existing.value() : nullptr;
  if (current && dynamic_cast<const VORNSecureEncryptionKey*>(current->encryptionKey().get()))
    started_ = true;
  else if (!existing.isError())
    started_ = installDefaultKey(current);
  if (!started_) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "The key store cannot be read now; no key is made or replaced until it can.");
  }
  return started_;
}

bool VORNKeyStoreManager::installDefaultKey(const std::shared_ptr<VORNKeyStoreKey>& current) {
  // The dictionary must be readable before a new pair replaces the old one; and without a
  // new key there is nothing to install, so the next call tries again.
  if (generatedKeyStore_->readKeyStoreDictionaryWithKey(current).isError())
    return false;
  auto key = createDefaultKey();
  return key && generatedKeyStore_->replaceKeyStoreKey(std::move(key));
}

std::shared_ptr<VORNKeyStoreKey> VORNKeyStoreManager::createDefaultKey() {
  auto secure = VORNSecureEncryptionKey::createKey(*items_->store(), kDefaultSecureKeyLabel);
  return secure ? std::make_shared<VORNKeyStoreKey>(std::move(secure)) : nullptr;
}

void VORNKeyStoreManager::switchToSecureKeyIfNeeded(
    const std::shared_ptr<VORNKeyStoreKey>& keyStoreKey) {
  if (keyStoreKey &&
      dynamic_cast<const VORNSecureEncryptionKey*>(keyStoreKey->encryptionKey().get()))
    return;
  run(false, [&] { generatedKeyStore_->setKeyStoreKey(createDefaultKey()); });
}

std::shared_ptr<VORNEncryptionKey> VORNKeyStoreManager::retrieveKeyWithLabel(
    std::optional<std::string_view> label, bool autoCreate) {
  if (!label)
    return nullptr;
  std::shared_ptr<VORNEncryptionKey> result;
  run(true, [&] {
    const std::string fullLabel = keyLabelForBaseLabel(*label);
    const auto dictionary = generatedKeyStore_->readKeyStoreDictionary();
    if (dictionary.isError())
      return;
    if (dictionary.isFound()) {
      const auto it = dictionary.value().find(fullLabel);
      if (it != dictionary.value().end() && it->second) {
        result = it->second->encryptionKey();
        return;
      }
    }
    if (!autoCreate)
      return;
    auto created = VORNKeyStoreKey::createKey();
    if (!created)
      return;
    KeyStoreDictionary updated = dictionary.isFound() ? dictionary.value() : KeyStoreDictionary{};
    updated[fullLabel] = created;
    generatedKeyStore_->setKeyStoreDictionary(updated);
    result = created->encryptionKey();
  });
  return result;
}

std::shared_ptr<VORNEncryptionKey> VORNKeyStoreManager::retrieveKeyWithLabel(
    std::string_view label, std::string_view keychainId) {
  std::shared_ptr<VORNKeyStoreKey> key;
  run(false, [&] {
    key = VORNKeyStoreKey::readFromKeyChain(*items_, keychainId, keyLabelForBaseLabel(label))
              .valueIfFound()
              .value_or(nullptr);
  });
  return key ? key->encryptionKey() : nullptr;
}

void VORNKeyStoreManager::storeKey(const std::shared_ptr<VORNEncryptionKey>& key,
                                   std::string_view label) {
  if (key)
    storeKeyStoreKey(std::make_shared<VORNKeyStoreKey>(key), label);
}

void VORNKeyStoreManager::removeKeyWithLabel(std::string_view label) {
  run(true, [&] {
    auto dictionary = generatedKeyStore_->readKeyStoreDictionary().valueIfFound();
    if (dictionary && dictionary->erase(keyLabelForBaseLabel(label)) > 0)
      generatedKeyStore_->setKeyStoreDictionary(dictionary);
  });
}

bool VORNKeyStoreManager::keyWithLabelExists(std::string_view label) {
  return retrieveKeyWithLabel(label, false) != nullptr;
}

bool VORNKeyStoreManager::keyExists(std::string_view label, std::string_view keychainId) {
  return retrieveKeyWithLabel(label, keychainId) != nullptr;
}

void VORNKeyStoreManager::storeKeyStoreKey(const std::shared_ptr<VORNKeyStoreKey>& key,
                                           std::string_view label) {
  run(true, [&] {
    const auto stored = generatedKeyStore_->readKeyStoreDictionary();
    // Writing over a dictionary that could not be read would drop every other entry.
    if (stored.isError())
      return;
    KeyStoreDictionary dictionary = stored.isFound() ? stored.value() : KeyStoreDictionary{};
    dictionary[keyLabelForBaseLabel(label)] = key;
    generatedKeyStore_->setKeyStoreDictionary(dictionary);
  });
}

bool VORNKeyStoreManager::storeData(ByteView data, std::string_view key,
                                    std::string_view keychainId) {
  bool stored = false;
  run(false, [&] {
    stored = VORNKeyStoreKey::dataToKeyChain(*items_, keychainId, key, data) == errSecSuccess;
  });
  return stored;
}

std::optional<Bytes> VORNKeyStoreManager::dataForKey(std::string_view key,
                                                     std::string_view keychainId) {
  std::optional<Bytes> data;
  run(false, [&] {
    data = VORNKeyStoreKey::readDataFromKeyChain(*items_, keychainId, key).valueIfFound();
  });
  return data;
}

bool VORNKeyStoreManager::removeKeyChainWithID(std::string_view keychainId) {
  bool removed = false;
  run(false, [&] { removed = VORNKeyStoreKey::removeKeyChainItem(*items_, keychainId); });
  return removed;
}

std::string VORNKeyStoreManager::keyLabelForBaseLabel(std::string_view label) const {
  return generatedKeyStore_->keyLabelForString(label);
}

Bytes VORNKeyStoreManager::keyStringToData(std::string_view text) {
  return Bytes(text.begin(), text.end());
}

}  // namespace vorn

#include "Inspector.hpp"

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <vector>

#include "StoreTables.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/platform/DefaultsStore.hpp"
#include "vorn/platform/KeychainStore.hpp"
#include "vorn/storage/crypto/Base64.hpp"
#include "vorn/storage/keychain/BaseAppIdentifier.hpp"
#include "vorn/storage/keychain/KeychainItems.hpp"
#include "vorn/storage/keystore/VORNGeneratedKeyStore.hpp"
#include "vorn/storage/keystore/VORNSecureEncryptionKey.hpp"
#include "vorn/storage/prefs/EncryptionManager.hpp"
#include "vorn/storage/prefs/SecurePrefs.hpp"
#include "vorn/storage/prefs/StorageManager.hpp"

namespace vorn::inspect {
namespace {

namespace fs = std::filesystem;

// Text with backslashes and control bytes escaped (and quotes too when `quotes` is set), so
// that names and values with odd bytes cannot disturb the output's lines.
std::string escape(std::string_view text, bool quotes) {
  std::string out;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if ((quotes && c == '"') || c == '\\') {
      out += '\\';
      out += c;
    } else if (byte < 0x20 || byte == 0x7F) {
      char escaped[5];
      std::snprintf(escaped, sizeof escaped, "\\x%02X", byte);
      out += escaped;
    } else {
      out += c;
    }
  }
  return out;
}

std::string quote(std::string_view text) {
  return "\"" + escape(text, true) + "\"";
}

std::string hex(const std::vector<std::uint8_t>& bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string out;
  out.reserve(bytes.size() * 2);
  for (const std::uint8_t byte : bytes) {
    out += kDigits[byte >> 4];
    out += kDigits[byte & 0x0F];
  }
  return out;
}

std::string keyMaterial(const std::vector<std::uint8_t>& bytes, bool show) {
  if (show)
    return hex(bytes);
  return "<hidden: " + std::to_string(bytes.size()) + " bytes>";
}

std::string plural(std::size_t count, std::string_view one, std::string_view many) {
  return std::to_string(count) + " " + std::string(count == 1 ? one : many);
}

bool isEncryptedSuite(std::string_view suite) {
  return suite == StorageManager::kRegistrationSuite ||
         suite.starts_with(StorageManager::kStorageNamePrefix);
}

std::string suiteKind(std::string_view suite) {
  if (suite == DefaultsStore::kStandardSuite)
    return "standard";
  if (suite == StorageManager::kRegistrationSuite)
    return "encrypted, registration ids";
  if (isEncryptedSuite(suite))
    return "encrypted, module storage";
  return "not the SDK's";
}

std::string typeAndSize(const EntryRow& entry) {
  switch (static_cast<EntryType>(entry.type)) {
    case EntryType::boolean:
      return "bool, 1 byte";
    case EntryType::integer:
      return "integer, 8 bytes";
    case EntryType::text:
      return "string, " + plural(entry.bytes.size(), "byte", "bytes");
    case EntryType::data:
      return "data, " + plural(entry.bytes.size(), "byte", "bytes");
  }
  return "unknown type " + std::to_string(entry.type);
}

std::string shownValue(const EntryRow& entry) {
  switch (static_cast<EntryType>(entry.type)) {
    case EntryType::boolean:
      return entry.integer != 0 ? "true" : "false";
    case EntryType::integer:
      return std::to_string(entry.integer);
    case EntryType::text:
      return quote(std::string(entry.bytes.begin(), entry.bytes.end()));
    case EntryType::data:
      return hex(entry.bytes);
  }
  return "?";
}

std::string_view keyClassName(int keyClass) {
  return keyClass == static_cast<int>(KeychainKeyClass::privateKey)  ? "private"
         : keyClass == static_cast<int>(KeychainKeyClass::publicKey) ? "public"
                                                                     : "unknown-class";
}

std::string_view keyTypeName(int keyType) {
  return keyType == static_cast<int>(KeychainKeyType::ec)    ? "ec"
         : keyType == static_cast<int>(KeychainKeyType::rsa) ? "rsa"
                                                             : "unknown-type";
}

struct DataDirectory {
  fs::path keychain;
  fs::path defaults;
  bool hasKeychain = false;
  bool hasDefaults = false;
};

// The directory's store files; false (with the reason on `err`) when it is not a data
// directory at all.
bool findStores(const fs::path& directory, DataDirectory& found, std::ostream& err) {
  std::error_code error;
  if (!fs::is_directory(directory, error)) {
    err << "vornsdk-inspect: " << directory.string()
        << (fs::exists(directory, error) ? " is not a directory" : " does not exist") << "\n";
    return false;
  }
  found.keychain = directory / KeychainStore::kFileName;
  found.defaults = directory / DefaultsStore::kFileName;
  found.hasKeychain = fs::is_regular_file(found.keychain, error);
  found.hasDefaults = fs::is_regular_file(found.defaults, error);
  if (!found.hasKeychain && !found.hasDefaults) {
    err << "vornsdk-inspect: " << directory.string() << " is not a vornsdk data directory (no "
        << KeychainStore::kFileName << ", no " << DefaultsStore::kFileName << ")\n";
    return false;
  }
  return true;
}

std::unique_ptr<StoreFile> openStore(const fs::path& file, std::ostream& err) {
  std::string error;
  auto store = StoreFile::open(file, error);
  if (!store)
    err << "vornsdk-inspect: cannot open " << file.string() << ": " << error << "\n";
  return store;
}

bool listKeychain(const fs::path& file, bool showKeyMaterial, std::ostream& out,
                  std::ostream& err) {
  auto store = openStore(file, err);
  if (!store)
    return false;
  const auto items = store->items();
  const auto keys = store->keys();
  if (!items.error.empty() || !keys.error.empty()) {
    err << "vornsdk-inspect: " << file.string()
        << " is not a vornsdk key store: " << (items.error.empty() ? keys.error : items.error)
        << "\n";
    return false;
  }
  out << KeychainStore::kFileName << ": " << plural(items.rows.size(), "item", "items") << ", "
      << plural(keys.rows.size(), "key", "keys") << "\n";
  for (const ItemRow& item : items.rows) {
    out << "  item service " << quote(item.service) << " account " << quote(item.account)
        << " accessible " << item.accessible << " value "
        << (item.data ? keyMaterial(*item.data, showKeyMaterial) : std::string("none"));
    if (item.attributeBytes > 0)
      out << " attributes " << plural(item.attributeBytes, "byte", "bytes");
    out << "\n";
  }
  for (const KeyRow& key : keys.rows) {
    out << "  key tag " << quote(key.tag) << " " << keyClassName(key.keyClass) << " "
        << keyTypeName(key.keyType) << " " << key.sizeBits << " bits accessible " << key.accessible
        << " data " << keyMaterial(key.data, showKeyMaterial) << "\n";
  }
  return true;
}

bool listDefaults(const fs::path& file, std::ostream& out, std::ostream& err) {
  auto store = openStore(file, err);
  if (!store)
    return false;
  const auto entries = store->entries();
  if (!entries.error.empty()) {
    err << "vornsdk-inspect: " << file.string()
        << " is not a vornsdk defaults store: " << entries.error << "\n";
    return false;
  }
  std::map<std::string, std::vector<const EntryRow*>> suites;
  for (const EntryRow& entry : entries.rows)
    suites[entry.suite].push_back(&entry);
  out << DefaultsStore::kFileName << ": " << plural(suites.size(), "suite", "suites") << "\n";
  for (const auto& [suite, rows] : suites) {
    out << "  suite " << quote(suite) << " (" << suiteKind(suite)
        << "): " << plural(rows.size(), "key", "keys") << "\n";
    const bool showValues = suite == DefaultsStore::kStandardSuite;
    for (const EntryRow* entry : rows) {
      out << "    " << quote(entry->key) << " " << typeAndSize(*entry);
      if (showValues)
        out << " = " << shownValue(*entry);
      out << "\n";
    }
  }
  return true;
}

int list(const Options& options, std::ostream& out, std::ostream& err) {
  DataDirectory stores;
  if (!findStores(options.dataDirectory, stores, err))
    return kFailed;
  out << "data directory " << options.dataDirectory.string() << "\n";
  bool listed = true;
  if (stores.hasKeychain)
    listed = listKeychain(stores.keychain, options.showKeyMaterial, out, err) && listed;
  else
    out << KeychainStore::kFileName << ": missing\n";
  if (stores.hasDefaults)
    listed = listDefaults(stores.defaults, out, err) && listed;
  else
    out << DefaultsStore::kFileName << ": missing\n";
  return listed ? kSucceeded : kFailed;
}

// ---- decrypting one module's secure preferences ----

struct ModuleStorage {
  std::string appId;
  std::string name;
};

// The application id and storage name of a suite named by getFilenameForModuleInstallation()
// for the installation `registrationId`; nothing for any other suite.
std::optional<ModuleStorage> moduleStorage(std::string_view suite,
                                           std::string_view registrationId) {
  if (suite == StorageManager::kRegistrationSuite ||
      !suite.starts_with(StorageManager::kStorageNamePrefix))
    return std::nullopt;
  const std::string_view rest = suite.substr(StorageManager::kStorageNamePrefix.size());
  const std::string marker = "_" + std::string(registrationId) + "_";
  const auto at = rest.rfind(marker);
  if (at == std::string_view::npos)
    return std::nullopt;
  return ModuleStorage{std::string(rest.substr(0, at)),
                       std::string(rest.substr(at + marker.size()))};
}

// The plain name of one SecurePrefs entry's stored key, or nothing when it is not this key's.
std::optional<std::string> entryName(const EntryRow& entry, const EncryptionManager& encryption) {
  const auto encrypted = dataFromBase64String(entry.key);
  if (!encrypted)
    return std::nullopt;
  return encryption.decrypt(*encrypted);
}

void printKey(const VORNEncryptionKey& key, std::string_view label, bool show, std::ostream& out) {
  if (const auto* secure = dynamic_cast<const VORNSecureEncryptionKey*>(&key)) {
    out << "key " << label << ": secure, EC pair " << quote(secure->label()) << "\n";
    return;
  }
  out << "key " << label << ": AES-256-CBC key " << keyMaterial(key.key(), show) << " iv "
      << keyMaterial(key.initializationVector(), show) << "\n";
}

// Prints the suite's entries that this module's key opens, sorted by name; the number of
// entries it does not open.
std::size_t printSuite(const std::vector<const EntryRow*>& rows, const SecurePrefs& prefs,
                       const EncryptionManager& encryption, std::ostream& out) {
  std::map<std::string, std::string> lines;
  std::size_t unopened = 0;
  for (const EntryRow* row : rows) {
    const auto name = entryName(*row, encryption);
    const auto value = name ? prefs.stringFor(*name) : std::nullopt;
    if (!name || !value) {
      ++unopened;
      continue;
    }
    lines[*name] = *value;
  }
  for (const auto& [name, value] : lines)
    out << "  " << escape(name, false) << " = " << escape(value, false) << "\n";
  return unopened;
}

int decrypt(const Options& options, std::ostream& out, std::ostream& err) {
  const auto module = moduleNameFrom(*options.decryptModule);
  if (!module) {
    err << "vornsdk-inspect: unknown module " << quote(*options.decryptModule)
        << " (known: cdp, push)\n";
    return kFailed;
  }
  DataDirectory stores;
  if (!findStores(options.dataDirectory, stores, err))
    return kFailed;
  if (!stores.hasKeychain || !stores.hasDefaults) {
    err << "vornsdk-inspect: " << options.dataDirectory.string() << " has no "
        << (stores.hasKeychain ? DefaultsStore::kFileName : KeychainStore::kFileName)
        << "; nothing can be decrypted\n";
    return kFailed;
  }
  auto keychain = KeychainStore::openFileReadOnly(options.dataDirectory);
  auto defaults = DefaultsStore::openFileReadOnly(options.dataDirectory);
  auto table = openStore(stores.defaults, err);
  if (!keychain || !defaults || !table)
    return kFailed;
  const auto entries = table->entries();
  if (!entries.error.empty()) {
    err << "vornsdk-inspect: " << stores.defaults.string()
        << " is not a vornsdk defaults store: " << entries.error << "\n";
    return kFailed;
  }

  auto items = std::make_shared<KeychainItems>(keychain);
  auto baseAppIdentifier = std::make_shared<BaseAppIdentifier>(defaults, items);
  if (!baseAppIdentifier->isConfigured()) {
    err << "vornsdk-inspect: no base application id in " << options.dataDirectory.string()
        << "; the SDK has stored no keys here\n";
    return kFailed;
  }
  VORNGeneratedKeyStore keyStore(items, baseAppIdentifier);
  const auto dictionary = keyStore.readKeyStoreDictionary();
  if (dictionary.isError()) {
    err << "vornsdk-inspect: the key store cannot be read (status " << dictionary.status() << ")\n";
    return kFailed;
  }
  const std::string label = keyStore.keyLabelForString(rawValue(*module));
  std::shared_ptr<VORNEncryptionKey> moduleKey;
  if (dictionary.isFound()) {
    const auto it = dictionary.value().find(label);
    if (it != dictionary.value().end() && it->second)
      moduleKey = it->second->encryptionKey();
  }
  if (!moduleKey) {
    err << "vornsdk-inspect: module " << rawValue(*module) << " has no key (" << label
        << ") in the key store\n";
    return kFailed;
  }
  const auto encryption = std::make_shared<EncryptionManager>(moduleKey);

  out << "module " << rawValue(*module) << "\n";
  if (const auto storeKey = keyStore.readKeyStoreKey(); storeKey.isFound() && storeKey.value())
    printKey(*storeKey.value()->encryptionKey(), "store key", options.showKeyMaterial, out);
  printKey(*moduleKey, label, options.showKeyMaterial, out);

  const SecurePrefs registration(defaults->suite(std::string(StorageManager::kRegistrationSuite)),
                                 encryption);
  const auto registrationId = registration.readString(StorageManager::kRegistrationIdKey);
  if (!registrationId.isFound()) {
    err << "vornsdk-inspect: module " << rawValue(*module) << " has no registration id in "
        << quote(StorageManager::kRegistrationSuite) << "\n";
    return kFailed;
  }

  std::map<std::string, std::vector<const EntryRow*>> suites;
  for (const EntryRow& entry : entries.rows)
    suites[entry.suite].push_back(&entry);
  out << "suite " << quote(StorageManager::kRegistrationSuite) << " (registration ids)\n";
  const std::size_t others = printSuite(suites[std::string(StorageManager::kRegistrationSuite)],
                                        registration, *encryption, out);
  if (others > 0)
    out << "  (" << plural(others, "entry", "entries") << " of other modules)\n";
  for (const auto& [suite, rows] : suites) {
    const auto storage = moduleStorage(suite, registrationId.value());
    if (!storage)
      continue;
    out << "suite " << quote(suite) << " (app " << quote(storage->appId) << ", storage "
        << quote(storage->name) << ")\n";
    const SecurePrefs prefs(defaults->suite(suite), encryption);
    if (const std::size_t unopened = printSuite(rows, prefs, *encryption, out); unopened > 0)
      out << "  (" << plural(unopened, "entry", "entries") << " that do not decrypt)\n";
  }
  return kSucceeded;
}

}  // namespace

int inspect(const Options& options, std::ostream& out, std::ostream& err) {
  return options.decryptModule ? decrypt(options, out, err) : list(options, out, err);
}

}  // namespace vorn::inspect

// VORNKeychainItemWrapper: one generic-password item of the key store (a service and an
// optional account), with an in-memory copy of its attributes and value that is written
// through on every change.
//
// Items are shared: itemWithIdentifier() hands out one object per cache key, through the
// KeychainItems of the current Platform (KeychainItems::shared()), until
// resetInMemoryKeychainItems(). An object reads the key store when it is made; afterwards its
// copy is the truth for reads, and changes made by anybody else are not seen until the cache
// is reset or the object is reloaded. A read that fails is not taken for a missing item: the
// failure is logged, the copy holds only the item's name meanwhile, and the next use reads
// the store again. Every item is written with the accessibility
// kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly.
//
// Failures are never thrown: they are logged ("com.quorvantis.security.keychainException -
// ..." at debug level, category encryption) and answered as an OSStatus or a boolean; readers
// answer nothing. A failed write keeps the previous in-memory value where there was one, but
// a value that had none before stays in memory although it was not stored.
//
// Ownership: an object holds the KeychainStore it was made on (the shared ones: the current
// Platform's keychain at the time they were made).
//
// Thread safety: all functions may be called from any thread. Reads and changes of one object
// are serialised on that object (re-entrant); every change runs in an exclusive section of
// the key store (KeychainStore::exclusively), taken before the object's lock, so no two key
// store writes overlap, in this process or another one. checkForProtectedData() blocks until
// the Platform's main queue has run its question; it must not be called while the main queue
// waits for the caller.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/platform/KeychainItem.hpp"
#include "vorn/platform/KeychainStatus.hpp"
#include "vorn/platform/KeychainStore.hpp"
#include "vorn/platform/ReadResult.hpp"

namespace vorn {

inline constexpr std::string_view kZQKeychainItemExceptionType =
    "com.quorvantis.security.keychainException";
inline constexpr std::string_view kZQKeychainItemExceptionErrorCodeKey =
    "com.quorvantis.security.keychainException.errorCode";

class VORN_API VORNKeychainItemWrapper {
 public:
  /// The shared object for (identifier, account), made on first request.
  static std::shared_ptr<VORNKeychainItemWrapper> itemWithIdentifier(
      std::string_view identifier, std::optional<std::string_view> account = std::nullopt);
  /// "<identifier>_<account>", with "(null)" standing for a missing account.
  static std::string itemDictKeyForIdentifier(std::string_view identifier,
                                              std::optional<std::string_view> account);
  /// Empties the cache; objects already handed out stay valid for their holders.
  static void resetInMemoryKeychainItems();

  /// Whether the device's protected data is available, asked on the Platform's main queue.
  static bool checkForProtectedData();
  /// The platform name of `status` ("errSecItemNotFound", ...), or "Unknown status code (n)".
  static std::string keychainErrorCodeString(OSStatus status);
  /// Logs "<exception type> - <msg>"; `code` is accepted for compatibility and not used.
  static void logKeychainItemExceptionWithCode(long code, std::string_view msg);
  /// Gives every item of the SDK's services (keychainServiceList()) the accessibility
  /// `accessible`; false at the first read error (other than not found) or update error.
  static bool updateKeychainAccessibleAttribute(std::string_view accessible);
  /// The SDK's own services, in the order the migration and the read probe visit them.
  static std::vector<std::string> keychainServiceList();

  /// Builds the search query and reads the item (initWithIdentifier:account:) from the current
  /// Platform's keychain.
  VORNKeychainItemWrapper(std::string_view identifier, std::optional<std::string_view> account);
  /// The same on `store`.
  VORNKeychainItemWrapper(std::shared_ptr<KeychainStore> store, std::string_view identifier,
                          std::optional<std::string_view> account);

  VORNKeychainItemWrapper(const VORNKeychainItemWrapper&) = delete;
  VORNKeychainItemWrapper& operator=(const VORNKeychainItemWrapper&) = delete;

  /// The search query, fixed at construction: the service, the account when one was given,
  /// match one, return attributes and data.
  const KeychainQuery& keychainQuery() const noexcept { return keychainQuery_; }
  /// A copy of the in-memory item: its attributes and, under kSecValueData, its value.
  KeychainDictionary keychainData() const;

  /// The item as stored, or only its service (and account) when it cannot be read.
  KeychainDictionary dictionaryItemFromKeychain() const;
  /// Reads the item from the store again and makes it the in-memory copy, unless the read
  /// fails (the copy then stays, and the next use reads again). The read's status.
  OSStatus reload() const;
  /// How the last read went: errSecSuccess (found), errSecItemNotFound, or the error.
  OSStatus readStatus() const;

  std::optional<KeychainValue> objectForKey(std::string_view key) const;
  /// Text as it is, bytes decoded as UTF-8 (nothing when they are not valid UTF-8).
  std::optional<std::string> stringForKey(std::string_view key) const;
  /// Stores `value` (or removes the key when it is absent) and writes the item through.
  /// errSecSuccess, without a key store call, when the value is already the stored one.
  OSStatus setObject(std::optional<KeychainValue> value, std::string_view key);

  /// The value as bytes (text values as their UTF-8 bytes).
  std::optional<KeychainData> valueData() const;
  /// valueData(), with an item that could not be read told apart from one without a value.
  ReadResult<KeychainData> readValueData() const;
  OSStatus setValueData(std::optional<KeychainData> data);
  std::optional<std::string> valueString() const;
  OSStatus setValueString(std::optional<std::string_view> value);

  /// Deletes the item from the key store; true also when it was not there.
  bool resetKeychainItem();
  /// A copy of `dictionary` ready for the key store: class generic password, accessibility
  /// kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly, a text value as UTF-8 bytes.
  KeychainDictionary dictionaryToSecItemFormat(const KeychainDictionary& dictionary) const;
  /// Adds the item, or updates it when it exists; the key store's status.
  OSStatus writeToKeychain();

 private:
  ReadResult<KeychainDictionary> readFromStore() const;
  KeychainDictionary placeholder() const;
  // Takes a read as the copy unless a change came in since `changes` was seen.
  void adopt(ReadResult<KeychainDictionary> read, std::uint64_t changes) const;
  void reloadIfUnread() const;
  // Whether the copy holds `value` under `key` already (logged as such), so nothing is written.
  bool holds(const KeychainValue& value, std::string_view key) const;
  OSStatus setObjectInSection(std::optional<KeychainValue> value, std::string_view key);
  OSStatus writeInSection();

  const std::shared_ptr<KeychainStore> store_;
  KeychainQuery keychainQuery_;
  mutable std::recursive_mutex mutex_;
  // The in-memory copy is a cache of the store, so readers may refresh it.
  mutable KeychainDictionary keychainData_;          // guarded by mutex_
  mutable OSStatus lastReadStatus_ = errSecSuccess;  // guarded by mutex_
  mutable std::uint64_t changes_ = 0;                // guarded by mutex_
};

}  // namespace vorn

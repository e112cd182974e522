// SecurePrefs: a small key-value store of one module in a user-defaults suite, with both
// the key and the value encrypted by the module's EncryptionManager.
//
// An entry with key K and value V is stored under the base64 text of encrypt(K) as the
// binary value encrypt(V). Encryption is deterministic, so the same key always finds the
// same entry. Typed values are stored as text: integers in decimal, booleans as "true" or
// "false", floating-point numbers as their shortest round-trip decimal text.
//
// clearAll() deletes the suite and makes the instance inert for good: setters then log and
// store nothing, getters give no value. A new instance for the same name works again.
//
// Every failure is a "storage" debug log line plus no value (or false); nothing is thrown.
// readString() also tells a value that could not be read (the key cannot be encrypted, or the
// store not read) from one that is not there, for callers that would otherwise make a new one.
// Without an EncryptionManager (null) the instance logs an error once and then behaves as one
// whose keys cannot be encrypted: it stores nothing and reads nothing.
//
// Ownership: held by std::shared_ptr; shares the module's EncryptionManager and keeps its
// defaults store alive. Thread safety: every call may come from any thread; the defaults
// store makes each read and write atomic, and the instance itself takes no lock.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/platform/DefaultsStore.hpp"
#include "vorn/platform/ReadResult.hpp"
#include "vorn/storage/prefs/EncryptionManager.hpp"

namespace vorn {

class VORN_API SecurePrefs {
 public:
  /// Opens the suite `suiteName` of the current Platform's defaults store (the store is taken
  /// from the Platform here, once).
  SecurePrefs(std::string suiteName, std::shared_ptr<EncryptionManager> encryptionManager);
  /// Opens the given suite.
  SecurePrefs(DefaultsSuite suite, std::shared_ptr<EncryptionManager> encryptionManager);

  SecurePrefs(const SecurePrefs&) = delete;
  SecurePrefs& operator=(const SecurePrefs&) = delete;

  const std::string& suiteName() const noexcept { return suite_.name(); }
  const std::shared_ptr<EncryptionManager>& encryptionManager() const noexcept {
    return encryptionManager_;
  }
  /// False once clearAll() has run.
  bool isLive() const noexcept { return !cleared_.load(std::memory_order_acquire); }

  /// setString(_:for:). True when the entry was written (durably, with the file backend).
  bool setString(std::string_view value, std::string_view key);
  bool setInt(std::int64_t value, std::string_view key);
  bool setBool(bool value, std::string_view key);
  bool setFloat(float value, std::string_view key);
  bool setDouble(double value, std::string_view key);

  std::optional<std::string> stringFor(std::string_view key) const;
  /// stringFor(), with a failed read (an error) told apart from an absent entry. An entry
  /// that does not decrypt reads as absent: it never will.
  ReadResult<std::string> readString(std::string_view key) const;
  /// readString() of each key, in the order given, as one snapshot of the store (see
  /// DefaultsStore::readSnapshot); cheaper than reading them one by one from the file. When a
  /// key cannot be encrypted every result is an error and nothing is read.
  std::vector<ReadResult<std::string>> readStrings(std::span<const std::string_view> keys) const;
  /// A base-10 integer with an optional sign; anything else gives no value.
  std::optional<std::int64_t> intFor(std::string_view key) const;
  /// Exactly "true" or "false"; anything else gives no value.
  std::optional<bool> boolFor(std::string_view key) const;
  std::optional<float> floatFor(std::string_view key) const;
  std::optional<double> doubleFor(std::string_view key) const;

  /// Deletes the entry of the key; true when the store no longer holds it.
  bool remove(std::string_view key);
  /// Deletes the whole suite and disables this instance.
  void clearAll();

 private:
  std::optional<std::string> storedKey(std::string_view key) const;
  ReadResult<std::string> decrypted(const ReadResult<DefaultsValue>& value) const;

  const DefaultsSuite suite_;
  const std::shared_ptr<EncryptionManager> encryptionManager_;
  std::atomic<bool> cleared_{false};
};

}  // namespace vorn

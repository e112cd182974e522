#include "vorn/storage/prefs/SecurePrefs.hpp"

#include <utility>

#include "storage/prefs/NumberText.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/platform/Platform.hpp"
#include "vorn/storage/crypto/Base64.hpp"

namespace vorn {

namespace {

std::string quoted(std::string_view key) {
  std::string out;
  out.reserve(key.size() + 2);
  out += '"';
  out += key;
  out += '"';
  return out;
}

std::string notReEncryptedText(std::string_view key) {
  return "Failed to return value by key, because key: " + quoted(key) +
         " could not be re-encrypted.";
}

}  // namespace

SecurePrefs::SecurePrefs(std::string suiteName,
                         std::shared_ptr<EncryptionManager> encryptionManager)
    : SecurePrefs(Platform::current()->defaults->suite(std::move(suiteName)),
                  std::move(encryptionManager)) {}

SecurePrefs::SecurePrefs(DefaultsSuite suite, std::shared_ptr<EncryptionManager> encryptionManager)
    : suite_(std::move(suite)), encryptionManager_(std::move(encryptionManager)) {
  if (!encryptionManager_) {
    VORN_LOG_ERROR(LoggerCategory::storage,
                   "SecurePrefs of suite " + suiteName() +
                       " was given no encryption manager; nothing will be stored or read.");
  }
}

std::optional<std::string> SecurePrefs::storedKey(std::string_view key) const {
  if (!encryptionManager_) {
    return std::nullopt;
  }
  const std::optional<Bytes> encrypted = encryptionManager_->encrypt(key);
  if (!encrypted) {
    return std::nullopt;
  }
  return base64Encode(*encrypted);
}

bool SecurePrefs::setString(std::string_view value, std::string_view key) {
  const std::optional<std::string> stored = storedKey(key);
  if (!stored) {
    VORN_LOG_DEBUG(LoggerCategory::storage, "Failed to encrypt key: " + quoted(key));
    return false;
  }
  const std::optional<Bytes> encryptedValue = encryptionManager_->encrypt(value);
  if (!encryptedValue) {
    VORN_LOG_DEBUG(LoggerCategory::storage, "Failed to encrypt value: " + quoted(key));
    return false;
  }
  if (!isLive()) {
    VORN_LOG_DEBUG(LoggerCategory::storage,
                   "Storage has been previously cleared on instance: " + suiteName() +
                       ", please re-initialize a new SecurePref object");
    return false;
  }
  return suite_.setData(*encryptedValue, *stored);
}

bool SecurePrefs::setInt(std::int64_t value, std::string_view key) {
  return setString(std::to_string(value), key);
}

bool SecurePrefs::setBool(bool value, std::string_view key) {
  return setString(value ? "true" : "false", key);
}

bool SecurePrefs::setFloat(float value, std::string_view key) {
  return setString(detail::floatText(value), key);
}

bool SecurePrefs::setDouble(double value, std::string_view key) {
  return setString(detail::doubleText(value), key);
}

std::optional<std::string> SecurePrefs::stringFor(std::string_view key) const {
  return readString(key).valueIfFound();
}

ReadResult<std::string> SecurePrefs::readString(std::string_view key) const {
  const std::optional<std::string> stored = storedKey(key);
  if (!stored) {
    VORN_LOG_DEBUG(LoggerCategory::storage, notReEncryptedText(key));
    return ReadResult<std::string>::error(errSecNotAvailable);
  }
  if (!isLive()) {
    return ReadResult<std::string>::absent();
  }
  return decrypted(suite_.read(*stored));
}

std::vector<ReadResult<std::string>> SecurePrefs::readStrings(
    std::span<const std::string_view> keys) const {
  std::vector<std::string> storedKeys;
  storedKeys.reserve(keys.size());
  for (const std::string_view key : keys) {
    std::optional<std::string> stored = storedKey(key);
    if (!stored) {
      VORN_LOG_DEBUG(LoggerCategory::storage, notReEncryptedText(key));
      return std::vector(keys.size(), ReadResult<std::string>::error(errSecNotAvailable));
    }
    storedKeys.push_back(std::move(*stored));
  }
  if (!isLive()) {
    return std::vector(keys.size(), ReadResult<std::string>::absent());
  }
  std::vector<ReadResult<std::string>> results;
  results.reserve(keys.size());
  for (const ReadResult<DefaultsValue>& value : suite_.readSnapshot(storedKeys))
    results.push_back(decrypted(value));
  return results;
}

// An entry that does not decrypt reads as absent: it never will.
ReadResult<std::string> SecurePrefs::decrypted(const ReadResult<DefaultsValue>& value) const {
  if (value.isError()) {
    return ReadResult<std::string>::error(value.status());
  }
  const auto* data = value.isFound() ? std::get_if<DefaultsData>(&value.value()) : nullptr;
  std::optional<std::string> text = data ? encryptionManager_->decrypt(*data) : std::nullopt;
  return text ? ReadResult<std::string>::found(std::move(*text))
              : ReadResult<std::string>::absent();
}

std::optional<std::int64_t> SecurePrefs::intFor(std::string_view key) const {
  const std::optional<std::string> text = stringFor(key);
  return text ? detail::parseInteger(*text) : std::nullopt;
}

std::optional<bool> SecurePrefs::boolFor(std::string_view key) const {
  const std::optional<std::string> text = stringFor(key);
  if (text == "true") {
    return true;
  }
  if (text == "false") {
    return false;
  }
  return std::nullopt;
}

std::optional<float> SecurePrefs::floatFor(std::string_view key) const {
  const std::optional<std::string> text = stringFor(key);
  return text ? detail::parseFloat(*text) : std::nullopt;
}

std::optional<double> SecurePrefs::doubleFor(std::string_view key) const {
  const std::optional<std::string> text = stringFor(key);
  return text ? detail::parseDouble(*text) : std::nullopt;
}

bool SecurePrefs::remove(std::string_view key) {
  const std::optional<std::string> stored = storedKey(key);
  if (!stored) {
    VORN_LOG_DEBUG(LoggerCategory::storage, notReEncryptedText(key));
    return false;
  }
  if (!isLive()) {
    VORN_LOG_DEBUG(LoggerCategory::storage, "Failed to remove value by key, because key: " +
                                                quoted(key) + " doesn't exist.");
    return false;
  }
  return suite_.removeObject(*stored);
}

void SecurePrefs::clearAll() {
  // Only the first call clears: a second one would delete entries that a newer instance
  // of the same suite wrote since.
  if (cleared_.exchange(true, std::memory_order_acq_rel)) {
    return;
  }
  suite_.removePersistentDomain();
  VORN_LOG_DEBUG(LoggerCategory::storage,
                 "Cleared all data. Further calls to this instance will do nothing.");
}

}  // namespace vorn

// The watcher's version check, run on every activation of the app.
#include <utf8proc.h>

#include "vorn/behavior/BehaviorWatcher.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/platform/Platform.hpp"

namespace vorn {
namespace {

constexpr std::string_view kVersionKey = "appVersion";
constexpr std::string_view kVersionKeychainId = "com.quorvantis.tessarine.VORNSdk_appVersion";

bool isUtf8(const Bytes& bytes) {
  const auto* cursor = reinterpret_cast<const utf8proc_uint8_t*>(bytes.data());
  auto remaining = static_cast<utf8proc_ssize_t>(bytes.size());
  while (remaining > 0) {
    utf8proc_int32_t codePoint = 0;
    const utf8proc_ssize_t length = utf8proc_iterate(cursor, remaining, &codePoint);
    if (length <= 0)
      return false;
    cursor += length;
    remaining -= length;
  }
  return true;
}

std::optional<std::string> asText(const std::optional<Bytes>& data) {
  if (!data || !isUtf8(*data))
    return std::nullopt;
  return std::string(data->begin(), data->end());
}

std::string storingLine(const std::string& version, std::string_view tail) {
  return "Storing current version \"" + version + "\"" + std::string(tail);
}

}  // namespace

std::shared_ptr<VORNKeyStoreManager> BehaviorWatcher::keyStore() const {
  return keyStore_ ? keyStore_ : VORNKeyStoreManager::shared();
}

void BehaviorWatcher::onUpgrade() {
  VORN_LOG_DEBUG(LoggerCategory::behavior, "App is active.");
  const auto current = Platform::current()->app.appVersion;
  if (!current) {
    VORN_LOG_DEBUG(LoggerCategory::behavior, "Current bundle version is unavailable.");
    return;
  }
  const auto previous = exchangeStoredVersion(*current);
  if (!previous || *previous == *current)
    return;
  if (const auto target = delegate())
    target->deliver(std::make_shared<const AppVersionChanged>(*previous));
  VORN_LOG_DEBUG(LoggerCategory::behavior, storingLine(*current, " in keychain."));
}

std::optional<std::string> BehaviorWatcher::exchangeStoredVersion(const std::string& current) {
  // Reading, comparing and storing are one step, so two activations on two threads cannot
  // both see the old version and report the change twice. The new version is therefore
  // stored before the change is delivered, and its line follows the delivery; nothing runs
  // observer code under this lock.
  std::lock_guard lock(versionMutex_);
  const auto store = keyStore();
  const auto stored = asText(store->dataForKey(kVersionKey, kVersionKeychainId));
  if (!stored)
    VORN_LOG_DEBUG(LoggerCategory::behavior,
                   storingLine(current, " in keychain (first time use)."));
  if (stored != current)
    store->storeData(VORNKeyStoreManager::keyStringToData(current), kVersionKey,
                     kVersionKeychainId);
  return stored;
}

}  // namespace vorn

#include "vorn/storage/keychain/BaseAppIdentifier.hpp"

#include "storage/keychain/PlatformShared.hpp"
#include "vorn/base/Uuid.hpp"
#include "vorn/logging/Log.hpp"
#include "vorn/storage/keychain/VORNCrypto.hpp"

namespace vorn {

BaseAppIdentifier::BaseAppIdentifier(std::shared_ptr<DefaultsStore> defaults,
                                     std::shared_ptr<KeychainItems> items)
    : defaults_(std::move(defaults)), items_(std::move(items)) {}

std::shared_ptr<BaseAppIdentifier> BaseAppIdentifier::shared() {
  return detail::sharedOnCurrentPlatform<BaseAppIdentifier>([](const Platform& platform) {
    return std::make_shared<BaseAppIdentifier>(platform.defaults, KeychainItems::shared());
  });
}

ReadResult<std::string> BaseAppIdentifier::storedIdentifier() {
  auto stored = defaults_->read(DefaultsStore::kStandardSuite, kSimulatorBaseAppIdentifierKey);
  if (stored.isError())
    return ReadResult<std::string>::error(stored.status());
  const auto* text = stored.isFound() ? std::get_if<std::string>(&stored.value()) : nullptr;
  if (text == nullptr || text->empty())
    return ReadResult<std::string>::absent();
  return ReadResult<std::string>::found(*text);
}

// An identifier stored by an earlier launch counts as configured, so the key store keeps its
// item names, and therefore its keys, across launches.
ReadResult<bool> BaseAppIdentifier::configuredFlag() {
  {
    std::lock_guard lock(mutex_);
    if (configured_)
      return ReadResult<bool>::found(*configured_);
  }
  auto stored = storedIdentifier();
  if (stored.isError())
    return ReadResult<bool>::error(stored.status());
  std::lock_guard lock(mutex_);
  if (!configured_) {
    configured_ = stored.isFound();
    if (stored.isFound())
      identifier_ = std::move(stored).value();
  }
  return ReadResult<bool>::found(*configured_);
}

ReadResult<std::string> BaseAppIdentifier::identifier() {
  const auto configured = configuredFlag();
  if (configured.isError())
    return ReadResult<std::string>::error(configured.status());
  if (!configured.value())
    return makeIdentifier();
  {
    std::lock_guard lock(mutex_);
    if (identifier_)
      return ReadResult<std::string>::found(*identifier_);
  }
  auto stored = storedIdentifier();
  std::lock_guard lock(mutex_);
  if (stored.isFound())
    identifier_ = stored.value();
  return stored;
}

ReadResult<std::string> BaseAppIdentifier::makeIdentifier() {
  auto result = ReadResult<std::string>::error(errSecNotAvailable);
  const OSStatus section = items_->exclusively([&] { result = storedOrNew(); });
  return section == errSecSuccess ? result : ReadResult<std::string>::error(section);
}

ReadResult<std::string> BaseAppIdentifier::storedOrNew() {
  // Read again under the lock: another process may have made the identifier meanwhile, and
  // making a second one would orphan every key stored under the first.
  auto stored = storedIdentifier();
  if (stored.isError())
    return stored;
  if (stored.isFound()) {
    std::lock_guard lock(mutex_);
    configured_ = true;
    identifier_ = stored.value();
    return stored;
  }
  const std::string made = makeUuidString();
  if (!defaults_->setString(DefaultsStore::kStandardSuite, made, kSimulatorBaseAppIdentifierKey)) {
    VORN_LOG_ERROR(LoggerCategory::encryption,
                   "Could not store a new base app identifier; it will be made on next use.");
    return ReadResult<std::string>::error(errSecNotAvailable);
  }
  std::lock_guard lock(mutex_);
  configured_ = true;
  configuredThisLaunch_ = true;
  identifier_ = made;
  return ReadResult<std::string>::found(made);
}

std::string BaseAppIdentifier::baseAppIdentifier() {
  return identifier().valueIfFound().value_or("");
}

void BaseAppIdentifier::setSimulatorBaseAppIdentifier(std::string_view identifier) {
  defaults_->setString(DefaultsStore::kStandardSuite, identifier, kSimulatorBaseAppIdentifierKey);
  std::lock_guard lock(mutex_);
  identifier_.reset();
}

bool BaseAppIdentifier::isConfigured() {
  const auto configured = configuredFlag();
  return configured.isFound() && configured.value();
}

void BaseAppIdentifier::setConfigured(bool configured) {
  std::lock_guard lock(mutex_);
  configured_ = configured;
}

bool BaseAppIdentifier::configuredThisLaunch() {
  std::lock_guard lock(mutex_);
  return configuredThisLaunch_;
}

void BaseAppIdentifier::setConfiguredThisLaunch(bool configured) {
  std::lock_guard lock(mutex_);
  configuredThisLaunch_ = configured;
}

}  // namespace vorn

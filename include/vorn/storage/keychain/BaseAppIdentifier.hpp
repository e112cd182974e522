// BaseAppIdentifier: the base application identifier of one installation, a random upper-case
// UUID text made once and appended to the names of the SDK's keychain items, so that a
// reinstalled application starts with fresh keys.
//
// identifier() is the user-defaults variant ("com.quorvantis.security.baseappid.sim" in the
// standard suite); the device variant keeps it in the keychain item
// "com.quorvantis.security.baseappid" instead. The configured flag starts out true when an
// identifier is already stored.
//
// A read that fails is not taken for a missing identifier: nothing is made and nothing is
// overwritten, the call answers an error (or ""), and the next call reads again. A new
// identifier is made in an exclusive section of the key store, after reading the defaults
// again there, so two processes starting together agree on one identifier.
//
// Ownership: holds its defaults store and the KeychainItems it makes sections and device
// items with. shared() is the instance on the current Platform's stores, made again after
// another Platform is installed and never destroyed; VORNCrypto's class operations forward
// to it. The identifier, once read or made, is kept for the life of the instance.
//
// Thread safety: every member function may be called from any thread.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/platform/DefaultsStore.hpp"
#include "vorn/platform/ReadResult.hpp"
#include "vorn/storage/keychain/KeychainItems.hpp"

namespace vorn {

class VORN_API BaseAppIdentifier {
 public:
  BaseAppIdentifier(std::shared_ptr<DefaultsStore> defaults, std::shared_ptr<KeychainItems> items);
  static std::shared_ptr<BaseAppIdentifier> shared();

  BaseAppIdentifier(const BaseAppIdentifier&) = delete;
  BaseAppIdentifier& operator=(const BaseAppIdentifier&) = delete;

  /// The identifier, made and stored when none is; an error when the defaults cannot be read
  /// or a new identifier cannot be stored, absent when the configured flag is set but nothing
  /// is stored.
  ReadResult<std::string> identifier();
  /// identifier(), or "" when it cannot be had.
  std::string baseAppIdentifier();
  void setSimulatorBaseAppIdentifier(std::string_view identifier);

  /// The keychain variant: the stored identifier, or a new one when none is configured or the
  /// stored one is missing or not UTF-8; "" when the item cannot be read.
  std::string deviceBaseAppIdentifier();
  /// Writes the identifier into the keychain item, with one retry; false when both fail.
  bool setDeviceBaseAppIdentifier(std::string_view identifier);

  /// False also while the defaults cannot be read.
  bool isConfigured();
  void setConfigured(bool configured);
  bool configuredThisLaunch();
  void setConfiguredThisLaunch(bool configured);

 private:
  ReadResult<bool> configuredFlag();
  // The stored text; absent when none or empty.
  ReadResult<std::string> storedIdentifier();
  ReadResult<std::string> makeIdentifier();
  // The identifier a section decided on: the stored one, or a new one it stored.
  ReadResult<std::string> storedOrNew();
  std::string newDeviceIdentifier();

  const std::shared_ptr<DefaultsStore> defaults_;
  const std::shared_ptr<KeychainItems> items_;
  std::mutex mutex_;
  std::optional<bool> configured_;         // guarded by mutex_; nothing until known
  bool configuredThisLaunch_ = false;      // guarded by mutex_
  std::optional<std::string> identifier_;  // guarded by mutex_
};

}  // namespace vorn

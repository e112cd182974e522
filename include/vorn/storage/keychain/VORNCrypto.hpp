// VORNCrypto's class operations on the base application identifier: a random upper-case UUID
// text made once per installation and appended to the names of the SDK's keychain items, so
// that a reinstalled application starts with fresh keys.
//
// baseAppIdentifier() is the user-defaults variant ("com.quorvantis.security.baseappid.sim" in
// the standard suite); deviceBaseAppIdentifier() keeps it in the keychain item
// "com.quorvantis.security.baseappid" instead. baseAppIdentifier() answers "" while the stored
// identifier cannot be read, and then makes none.
//
// Ownership: every operation forwards to BaseAppIdentifier::shared(), the instance on the
// current Platform's stores, which keeps the flags and the identifier.
//
// Thread safety: every operation may be called from any thread; a new identifier is made
// under the key store's exclusive section, so concurrent makers (in this process or another)
// agree on one.
#pragma once

#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"

namespace vorn {

inline constexpr std::string_view kBaseAppIdentifierKeychainService =
    "com.quorvantis.security.baseappid";
inline constexpr std::string_view kSimulatorBaseAppIdentifierKey =
    "com.quorvantis.security.baseappid.sim";

class VORN_API VORNCrypto {
 public:
  VORNCrypto() = delete;

  /// simulatorBaseAppIdentifier(), or "" when none could be had.
  static std::string baseAppIdentifier();
  static void setBaseAppIdentifier(std::string_view identifier);

  static std::string simulatorBaseAppIdentifier();
  static void setSimulatorBaseAppIdentifier(std::string_view identifier);

  static std::string deviceBaseAppIdentifier();
  /// Writes the identifier into the keychain item, with one retry; false when both fail.
  static bool setDeviceBaseAppIdentifier(std::string_view identifier);

  static bool baseAppIdentifierIsConfigured();
  static void setBaseAppIdentifierIsConfigured(bool configured) noexcept;
  static bool baseAppIdentifierConfiguredThisLaunch() noexcept;
  static void setBaseAppIdentifierConfiguredThisLaunch(bool configured) noexcept;
};

}  // namespace vorn

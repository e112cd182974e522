// VORNSdk: the SDK's entry class. It has no instances; every operation is a class operation.
//
// initializeSdk() returns at once and runs the start-up on the serial queue
// "com.quorvantis.tessarine.vornsdk.initializesdk", so start-ups never overlap: a repeat of
// the configuration last applied is skipped while the SDK is READY (its callbacks all hear
// "success"); otherwise the key store is checked (up to ten probes half a second apart; a
// key store that stays inaccessible stops the start-up with a fault line and nothing else),
// the modules of the previous configuration are torn down, and each configured module is
// looked up in ModuleRegistry, checked against its facade's version range and started on a
// fresh module queue. Start-up waits up to five seconds for every module's outcome: READY,
// and the configuration is remembered; or, on time-out, everything is torn down again and
// the state is back to NONE. A module's outcome reaches its callbacks in the order the
// configuration lists them: the event bus's first, the app's next. A module that fails to
// start reports no outcome at all; the start-up time-out is what the app then sees.
//
// The first use of the class installs the facades' status and identity sources below them
// (the event bus, the identity). state() is the SDK's JSON snapshot, written for reading by
// people: escaped line feeds become real ones and every other backslash is dropped, so it
// is not always valid JSON.
//
// Ownership: the facades, the identity and the start-up record live for the whole process.
// Thread safety: every operation may be called from any thread. Apart from initializeSdk()
// they run on the caller's thread; callbacks and requests the app hands in are called on
// the SDK's threads.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/base/InitializationState.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/core/Config.hpp"
#include "vorn/events/Event.hpp"
#include "vorn/facades/CDP.hpp"
#include "vorn/facades/PUSH.hpp"
#include "vorn/identity/DataMerge.hpp"
#include "vorn/identity/DataMergePolicy.hpp"
#include "vorn/identity/IDENTITY.hpp"
#include "vorn/logging/LogLevel.hpp"
#include "vorn/logging/LogOutputter.hpp"
#include "vorn/logging/LoggerCategory.hpp"
#include "vorn/storage/prefs/FileProtectionType.hpp"

namespace vorn {

class VORN_API VORNSdk {
 public:
  VORNSdk() = delete;

  /// Schedules a start-up with `config` and returns at once.
  static void initializeSdk(Config config);
  /// Tears down one module; the remembered configuration and the state stay as they are.
  static void tearDownModule(ModuleName name);

  /// NONE, INITIALIZING or READY.
  static InitializationState initializationState();
  /// The configuration of the last start-up that ended READY; none after a teardown.
  static std::optional<Config> lastAppliedConfiguration();

  /// The state snapshot: the SDK version, the registration id, and for both modules their
  /// status, version range, pending operations, version and properties.
  static std::string state();
  /// Publishes `event` on the event bus with producer `sdk`; a null event is ignored.
  static void track(std::shared_ptr<const Event> event);

  static std::shared_ptr<CDP> cdp();
  static std::shared_ptr<PUSH> mp();
  static std::shared_ptr<IDENTITY> identity();
  /// A null identity is ignored.
  static void setIdentity(std::shared_ptr<IDENTITY> identity);
  /// The push facade's request handling: `block` is called with the facade at once when
  /// the push module is operational, otherwise kept and run later in order.
  static void requestPushSdk(PUSH::Request block);

  /// The library's version from the platform's app info, read on first use; "Failed to read
  /// version" when the app info has none.
  static std::string sdkVersion();
  static void setSdkVersion(std::string version);

  /// Sets the shared logger's level and sink; the category filters stay as they are.
  static void setLogger(LogLevel logLevel, std::shared_ptr<LogOutputter> logOutputter);
  /// Sets level and sink, then appends the categories to the filters (they accumulate until
  /// clearLoggerFilters()).
  static void setLogger(LogLevel logLevel, std::shared_ptr<LogOutputter> logOutputter,
                        const std::vector<LoggerCategory>& filters);
  static void clearLoggerFilters();
  static LogLevel getLogLevel();

  /// The data merge policy, as DataPolicy.
  static void setAutoMergePolicy(AutoMergePolicyCallback onCompletion);
  static void setManualMergePolicy(ManualMergePolicyCallback handler);
  static DataMergePolicy getDataMergePolicy();
  static AutoMergePolicyCallback getAutoDataPolicyCallBack();
  static ManualMergePolicyCallback getManualDataPolicyCallBack();
  static bool resetDataPolicy(std::string_view appId);

  /// The protection of files the library writes; no value stores
  /// completeUntilFirstUserAuthentication, which is also the value before any call.
  static void setFileProtectionType(std::optional<FileProtectionType> fileProtectionType);
  static std::optional<FileProtectionType> fileProtectionType();

  /// Key store items always use kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly and key
  /// store errors are never fatal: the setters do nothing, deliberately, and the getters
  /// answer those fixed values.
  static void setKeychainAccessibleAttribute(std::optional<std::string_view> accessibleAttribute);
  static std::string_view keychainAccessibleAttribute();
  static void setKeychainAccessErrorsAreFatal(bool errorsAreFatal);
  static bool keychainAccessErrorsAreFatal();
};

}  // namespace vorn

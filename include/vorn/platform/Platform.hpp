// Platform: everything the library takes from the host operating system, in one place.
//
// The host installs one Platform before it first uses the library; when none is installed,
// current() builds Platform::defaultPlatform(defaultDataDirectory()) on first use. Tests install a
// Platform of in-memory stores (vorn::testing) so every test runs against fresh state.
//
// The data directory is VORNSDK_DATA_DIR when set and not empty, else $XDG_DATA_HOME/vornsdk
// when XDG_DATA_HOME is set and not empty, else ~/.local/share/vornsdk. Directories the
// library creates are mode 0700 and its files mode 0600, whatever the process umask.
//
// Ownership: a Platform is a value that shares its services; copies share them too. The
// installed one lives until another is installed, and callers that took current() keep
// theirs alive as long as they hold it.
//
// The field `defaults` is the user-defaults store, so the factory of the default Platform is
// named defaultPlatform().
//
// Thread safety: install() and current() may be called from any thread at any time.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "vorn/base/Export.hpp"
#include "vorn/platform/AppInfo.hpp"
#include "vorn/platform/Clock.hpp"
#include "vorn/platform/DefaultsStore.hpp"
#include "vorn/platform/HttpTransport.hpp"
#include "vorn/platform/KeychainStore.hpp"
#include "vorn/runtime/Executor.hpp"

namespace vorn {

struct VORN_API Platform {
  std::shared_ptr<KeychainStore> keychain;  // SecItem semantics, OSStatus-style codes
  std::shared_ptr<DefaultsStore> defaults;  // standard store + named suites
  std::shared_ptr<HttpTransport> http;      // one request → data, response, error
  AppInfo app;                              // sdk version, app version/name, system name
  std::function<bool()> protectedDataAvailable;
  std::shared_ptr<Executor> mainQueue;  // the host's main thread, or our own
  std::shared_ptr<Clock> clock;         // wall clock in ms since 1970

  /// File-backed stores in `dataDir` (created 0700 when missing), protected data always
  /// available, a private serial queue standing in for the main queue, the system clock and
  /// the libcurl transport. A store whose file cannot even be created is replaced by an in-memory
  /// one, with a fault log line, so the library keeps running for this launch; an existing
  /// file that cannot be read is never replaced (see the stores' openFile()).
  static Platform defaultPlatform(const std::filesystem::path& dataDir);
  /// Like defaultPlatform(), but with in-memory stores and the none() transport: nothing
  /// touches the disk or the network.
  static Platform ephemeral();
  /// The data directory named by the environment (see above).
  static std::filesystem::path defaultDataDirectory();

  /// Makes `platform` the current one. Missing services are filled from ephemeral().
  static void install(Platform platform);
  /// The installed Platform, or (installed on first use) defaultPlatform(defaultDataDirectory()).
  static std::shared_ptr<const Platform> current();
};

}  // namespace vorn

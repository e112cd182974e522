#include "vorn/platform/Platform.hpp"

#include <cstdlib>
#include <mutex>

#include "vorn/logging/Log.hpp"
#include "vorn/runtime/DispatchQueue.hpp"

namespace vorn {
namespace {

std::filesystem::path environmentPath(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || *value == '\0')
    return {};
  return value;
}

Platform withoutStores() {
  Platform platform;
  platform.app = AppInfo::fromProcess();
  platform.protectedDataAvailable = [] { return true; };
  platform.mainQueue = std::make_shared<DispatchQueue>("vornsdk.main");
  platform.clock = Clock::system();
  platform.http = HttpTransport::none();
  return platform;
}

// The process-wide Platform. Never destroyed, so app exit cannot race a worker thread.
struct Installed {
  std::mutex mutex;
  std::shared_ptr<const Platform> platform;  // guarded by mutex
};

Installed& installed() {
  static auto* state = new Installed();
  return *state;
}

}  // namespace

std::filesystem::path Platform::defaultDataDirectory() {
  if (auto explicitDir = environmentPath("VORNSDK_DATA_DIR"); !explicitDir.empty())
    return explicitDir;
  if (auto xdg = environmentPath("XDG_DATA_HOME"); !xdg.empty())
    return xdg / "vornsdk";
  return environmentPath("HOME") / ".local" / "share" / "vornsdk";
}

Platform Platform::defaultPlatform(const std::filesystem::path& dataDir) {
  Platform platform = withoutStores();
  platform.keychain = KeychainStore::openFile(dataDir);
  if (!platform.keychain) {
    VORN_LOG_FAULT(LoggerCategory::storage,
                   "Keychain store unavailable in " + dataDir.string() + "; using memory.");
    platform.keychain = KeychainStore::inMemory();
  }
  platform.defaults = DefaultsStore::openFile(dataDir);
  if (!platform.defaults) {
    VORN_LOG_FAULT(LoggerCategory::storage,
                   "Defaults store unavailable in " + dataDir.string() + "; using memory.");
    platform.defaults = DefaultsStore::inMemory();
  }
  platform.http = HttpTransport::curl();
  return platform;
}

Platform Platform::ephemeral() {
  Platform platform = withoutStores();
  platform.keychain = KeychainStore::inMemory();
  platform.defaults = DefaultsStore::inMemory();
  return platform;
}

void Platform::install(Platform platform) {
  if (!platform.keychain)
    platform.keychain = KeychainStore::inMemory();
  if (!platform.defaults)
    platform.defaults = DefaultsStore::inMemory();
  if (!platform.protectedDataAvailable)
    platform.protectedDataAvailable = [] { return true; };
  if (!platform.mainQueue)
    platform.mainQueue = std::make_shared<DispatchQueue>("vornsdk.main");
  if (!platform.clock)
    platform.clock = Clock::system();
  if (!platform.http)
    platform.http = HttpTransport::none();
  auto shared = std::make_shared<const Platform>(std::move(platform));
  std::lock_guard lock(installed().mutex);
  installed().platform = std::move(shared);
}

std::shared_ptr<const Platform> Platform::current() {
  Installed& state = installed();
  std::lock_guard lock(state.mutex);
  if (!state.platform)
    state.platform = std::make_shared<const Platform>(defaultPlatform(defaultDataDirectory()));
  return state.platform;
}

}  // namespace vorn

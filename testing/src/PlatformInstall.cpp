#include "vorn/testing/PlatformInstall.hpp"

namespace vorn::testing {

Platform installEphemeralPlatform(std::shared_ptr<KeychainStore> keychain,
                                  std::shared_ptr<DefaultsStore> defaults) {
  Platform platform = Platform::ephemeral();
  if (keychain)
    platform.keychain = std::move(keychain);
  if (defaults)
    platform.defaults = std::move(defaults);
  Platform::install(platform);
  return platform;
}

}  // namespace vorn::testing

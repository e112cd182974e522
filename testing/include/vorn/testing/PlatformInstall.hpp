// Installs a Platform of in-memory stores for a test, so the test never touches the user's
// data directory. Pass a (faulty) store to use it instead of a fresh in-memory one; the
// returned Platform is the one installed.
#pragma once

#include <memory>

#include "vorn/platform/Platform.hpp"

namespace vorn::testing {

Platform installEphemeralPlatform(std::shared_ptr<KeychainStore> keychain = nullptr,
                                  std::shared_ptr<DefaultsStore> defaults = nullptr);

}  // namespace vorn::testing

#include "sdk/SdkVersion.hpp"

#include <optional>

#include "vorn/platform/Platform.hpp"
#include "vorn/runtime/Atomic.hpp"

namespace vorn::detail {
namespace {

constexpr const char* kUnreadableVersion = "Failed to read version";

// Never destroyed: a start-up still running at exit may read it.
Atomic<std::optional<std::string>>& cell() {
  static auto* const instance = new Atomic<std::optional<std::string>>();
  return *instance;
}

// An app info without the entry leaves it empty. The fallback text is what the app sees,
// deliberately without any other signal.
std::string readFromPlatform() {
  std::string version = Platform::current()->app.sdkVersion;
  return version.empty() ? kUnreadableVersion : version;
}

}  // namespace

std::string sdkVersion() {
  std::string version;
  cell().mutate([&](std::optional<std::string>& value) {
    if (!value)
      value = readFromPlatform();
    version = *value;
  });
  return version;
}

void setSdkVersion(std::string version) {
  cell().mutate([&](std::optional<std::string>& value) { value = std::move(version); });
}

}  // namespace vorn::detail

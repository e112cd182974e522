#include "vorn/platform/AppInfo.hpp"

#include <sys/utsname.h>

#include <cerrno>

namespace vorn {
namespace {

// The project version, handed in by the build (src/CMakeLists.txt).
constexpr const char* kSdkVersion = VORN_SDK_VERSION;

}  // namespace

AppInfo AppInfo::fromProcess() {
  AppInfo info;
  info.sdkVersion = kSdkVersion;
  info.appName = program_invocation_short_name;
  struct utsname names {};
  if (::uname(&names) == 0)
    info.systemName = names.sysname;
  return info;
}

}  // namespace vorn

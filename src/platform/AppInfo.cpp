#include "vorn/platform/AppInfo.hpp"

#include <sys/utsname.h>

#include <cerrno>

namespace vorn {
namespace {

// Kept in step with the project version in the top-level CMakeLists.txt.
constexpr const char* kSdkVersion = "0.1.0";

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

// AppInfo: what the host tells the library about itself. Plain value type.
#pragma once

#include <string>

#include "vorn/base/Export.hpp"

namespace vorn {

struct AppInfo {
  /// The library's version, as published under the info key "VORNSdk_version".
  std::string sdkVersion;
  std::string appVersion;
  std::string appName;
  /// The device's operating system name ("iOS", "Linux", ...).
  std::string systemName;

  /// This library's version, the running program's name and the kernel's name; no app
  /// version (the host supplies it).
  VORN_API static AppInfo fromProcess();
};

}  // namespace vorn

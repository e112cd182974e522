// AppInfo: what the host tells the library about itself. Plain value type.
//
// The app's version and name come from the host's bundle or package metadata and may be
// missing there (a command-line program has no version): absent and empty stay different.
#pragma once

#include <optional>
#include <string>

#include "vorn/base/Export.hpp"

namespace vorn {

struct AppInfo {
  /// The library's version, as published under the info key "VORNSdk_version".
  std::string sdkVersion;
  /// The app's short version ("CFBundleShortVersionString" on iOS); absent when unknown.
  std::optional<std::string> appVersion;
  /// The app's name ("CFBundleName" on iOS); absent when unknown.
  std::optional<std::string> appName;
  /// The device's operating system name ("iOS", "Linux", ...).
  std::string systemName;

  /// This library's version, the running program's name and the kernel's name; no app
  /// version (the host supplies it).
  VORN_API static AppInfo fromProcess();
};

}  // namespace vorn

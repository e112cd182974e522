// Loading a shared library into the process, for module libraries a host names by path.
//
// The library is loaded with every symbol resolved at once and is never unloaded, so code it
// registered while loading stays callable for the life of the process.
#pragma once

#include <string>

namespace vorn::detail {

struct DynamicLibraryLoad {
  bool loaded = false;
  /// The loader's reason when loading failed; empty otherwise.
  std::string reason;
};

DynamicLibraryLoad loadDynamicLibrary(const std::string& path);

}  // namespace vorn::detail

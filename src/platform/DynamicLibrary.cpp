#include "platform/DynamicLibrary.hpp"

#include <dlfcn.h>

namespace vorn::detail {

DynamicLibraryLoad loadDynamicLibrary(const std::string& path) {
  // The handle is dropped on purpose: RTLD_NODELETE keeps the library mapped even if the
  // host loads and closes it itself, since registered factories point into it.
  if (::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE) != nullptr)
    return {true, {}};
  const char* reason = ::dlerror();
  return {false, reason != nullptr ? reason : "unknown loader error"};
}

}  // namespace vorn::detail

#include "capi/Text.hpp"

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "capi/Boundary.hpp"

namespace vorn::capi {

char* copyOut(std::string_view text) {
  auto* copy = static_cast<char*>(std::malloc(text.size() + 1));
  if (copy == nullptr)
    throw std::bad_alloc();
  std::memcpy(copy, text.data(), text.size());
  copy[text.size()] = '\0';
  return copy;
}

std::optional<ModuleName> moduleFrom(const char* name) noexcept {
  if (name == nullptr)
    return std::nullopt;
  return moduleNameFrom(name);
}

vorn_status modulesFrom(std::string_view function, const char* const* names, std::size_t count,
                        std::vector<ModuleName>& modules) {
  if (names == nullptr && count > 0)
    return refuse(function, VORN_ERROR_INVALID_ARGUMENT, "the module list is NULL");
  for (std::size_t i = 0; i < count; ++i) {
    const auto module = moduleFrom(names[i]);
    if (!module)
      return refuse(function, VORN_ERROR_UNKNOWN_MODULE,
                    "unknown module \"" + std::string(names[i] ? names[i] : "(null)") + "\"");
    modules.push_back(*module);
  }
  return VORN_OK;
}

}  // namespace vorn::capi

extern "C" void vorn_free(void* pointer) {
  std::free(pointer);
}

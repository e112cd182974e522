// The identity forms that take modules as integers (0 = cdp, 1 = push) convert them here.
// Each unknown integer is dropped with its warning; when nothing valid is left the result
// is absent and the warning "Setting the `profile id` failed due to invalid modules." has
// been written. The attribute forms write that same text: log texts are kept as they are.
// Thread-safe.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "vorn/base/ModuleName.hpp"
#include "vorn/identity/ModuleNameFromInt.hpp"

namespace vorn::detail {

void logNoValidModules();

std::optional<std::vector<ModuleName>> modulesFromInts(const std::vector<int>& rawModules);

template <class V>
std::optional<std::map<ModuleName, V>> modulesFromIntKeys(const std::map<int, V>& entries) {
  std::map<ModuleName, V> converted;
  for (const auto& [raw, value] : entries) {
    if (const auto module = moduleNameFromInt(raw))
      converted.emplace(*module, value);
  }
  if (converted.empty()) {
    logNoValidModules();
    return std::nullopt;
  }
  return converted;
}

}  // namespace vorn::detail

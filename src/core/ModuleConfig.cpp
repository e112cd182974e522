#include "vorn/core/ModuleConfig.hpp"

#include "core/PropertyEquality.hpp"

namespace vorn {

ModuleConfig::~ModuleConfig() = default;

bool moduleConfigsEqual(const ModuleConfig& a, const ModuleConfig& b) {
  if (a.name() != b.name())
    return false;
  const auto propertiesA = a.storedProperties();
  const auto propertiesB = b.storedProperties();
  if (propertiesA.size() != propertiesB.size())
    return false;
  for (std::size_t i = 0; i < propertiesA.size(); ++i) {
    if (propertiesA[i].first != propertiesB[i].first ||
        !detail::platformObjectsEqual(propertiesA[i].second, propertiesB[i].second))
      return false;
  }
  return true;
}

}  // namespace vorn

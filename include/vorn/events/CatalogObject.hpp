// CatalogObject: the payload of the catalog object events - an item of the app's catalogue
// with its attributes and the ids of related objects, by relation name. A plain value.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "vorn/base/Value.hpp"

namespace vorn {

struct CatalogObject {
  std::string type;
  std::string id;
  Dictionary attributes;
  std::map<std::string, std::vector<std::string>> relatedCatalogObjects;

  bool operator==(const CatalogObject&) const = default;
};

}  // namespace vorn

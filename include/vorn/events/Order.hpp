// Order: the payload of the order events. A plain value; the total is an exact decimal.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "vorn/base/Decimal.hpp"
#include "vorn/base/Value.hpp"
#include "vorn/events/LineItem.hpp"

namespace vorn {

struct Order {
  std::string id;
  std::vector<LineItem> lineItems;
  std::optional<Decimal> totalValue;
  std::optional<std::string> currency;
  Dictionary attributes;

  bool operator==(const Order&) const = default;
};

}  // namespace vorn

// LineItem: one line of a cart or an order. A plain value; prices are exact decimals.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "vorn/base/Decimal.hpp"
#include "vorn/base/Value.hpp"

namespace vorn {

struct LineItem {
  std::string catalogObjectType;
  std::string catalogObjectId;
  std::int64_t quantity = 0;
  std::optional<Decimal> price;
  std::optional<std::string> currency;
  std::optional<Dictionary> attributes;

  bool operator==(const LineItem&) const = default;
};

}  // namespace vorn

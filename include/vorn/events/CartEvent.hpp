// Cart events: changes to the shopping cart. Each carries its line items, a fixed name,
// category `engagement` and absent attributes.
//
// The payload is stored as given, without validation; like every event these are immutable
// and may be read from any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/events/EngagementEvent.hpp"
#include "vorn/events/LineItem.hpp"

namespace vorn {

class VORN_API CartEvent : public EngagementEvent {
 public:
  const std::vector<LineItem>& lineItems() const noexcept { return lineItems_; }

 protected:
  CartEvent(std::string name, std::vector<LineItem> lineItems);

 private:
  const std::vector<LineItem> lineItems_;
};

class VORN_API AddToCartEvent final : public CartEvent {
 public:
  static constexpr std::string_view kName = "Add To Cart";
  explicit AddToCartEvent(LineItem lineItem);
};

class VORN_API RemoveFromCartEvent final : public CartEvent {
 public:
  static constexpr std::string_view kName = "Remove From Cart";
  explicit RemoveFromCartEvent(LineItem lineItem);
};

class VORN_API ReplaceCartEvent final : public CartEvent {
 public:
  static constexpr std::string_view kName = "Replace Cart";
  explicit ReplaceCartEvent(std::vector<LineItem> lineItems);
};

}  // namespace vorn

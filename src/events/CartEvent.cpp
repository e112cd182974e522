#include "vorn/events/CartEvent.hpp"

#include <utility>

namespace vorn {

CartEvent::CartEvent(std::string name, std::vector<LineItem> lineItems)
    : EngagementEvent(std::move(name), std::nullopt), lineItems_(std::move(lineItems)) {}

AddToCartEvent::AddToCartEvent(LineItem lineItem)
    : CartEvent(std::string(kName), std::vector<LineItem>{std::move(lineItem)}) {}

RemoveFromCartEvent::RemoveFromCartEvent(LineItem lineItem)
    : CartEvent(std::string(kName), std::vector<LineItem>{std::move(lineItem)}) {}

ReplaceCartEvent::ReplaceCartEvent(std::vector<LineItem> lineItems)
    : CartEvent(std::string(kName), std::move(lineItems)) {}

}  // namespace vorn

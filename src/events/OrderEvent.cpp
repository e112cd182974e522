#include "vorn/events/OrderEvent.hpp"

#include <utility>

namespace vorn {

OrderEvent::OrderEvent(std::string name, Order order)
    : EngagementEvent(std::move(name), std::nullopt), order_(std::move(order)) {}

PurchaseOrderEvent::PurchaseOrderEvent(Order order)
    : OrderEvent(std::string(kName), std::move(order)) {}

PreorderEvent::PreorderEvent(Order order) : OrderEvent(std::string(kName), std::move(order)) {}

CancelOrderEvent::CancelOrderEvent(Order order)
    : OrderEvent(std::string(kName), std::move(order)) {}

ShipOrderEvent::ShipOrderEvent(Order order) : OrderEvent(std::string(kName), std::move(order)) {}

DeliverOrderEvent::DeliverOrderEvent(Order order)
    : OrderEvent(std::string(kName), std::move(order)) {}

ReturnOrderEvent::ReturnOrderEvent(Order order)
    : OrderEvent(std::string(kName), std::move(order)) {}

ExchangeOrderEvent::ExchangeOrderEvent(Order order)
    : OrderEvent(std::string(kName), std::move(order)) {}

}  // namespace vorn

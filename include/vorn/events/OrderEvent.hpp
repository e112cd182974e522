// Order events: steps in an order's life. Each carries the order, a fixed name, category
// `engagement` and absent attributes. (PreorderEvent lacks the "Order" of its siblings'
// names; the name is established and kept.)
//
// The payload is stored as given, without validation; like every event these are immutable
// and may be read from any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/events/EngagementEvent.hpp"
#include "vorn/events/Order.hpp"

namespace vorn {

class VORN_API OrderEvent : public EngagementEvent {
 public:
  const Order& order() const noexcept { return order_; }

 protected:
  OrderEvent(std::string name, Order order);

 private:
  const Order order_;
};

class VORN_API PurchaseOrderEvent final : public OrderEvent {
 public:
  static constexpr std::string_view kName = "Purchase";
  explicit PurchaseOrderEvent(Order order);
};

class VORN_API PreorderEvent final : public OrderEvent {
 public:
  static constexpr std::string_view kName = "Preorder";
  explicit PreorderEvent(Order order);
};

class VORN_API CancelOrderEvent final : public OrderEvent {
 public:
  static constexpr std::string_view kName = "Cancel";
  explicit CancelOrderEvent(Order order);
};

class VORN_API ShipOrderEvent final : public OrderEvent {
 public:
  static constexpr std::string_view kName = "Ship";
  explicit ShipOrderEvent(Order order);
};

class VORN_API DeliverOrderEvent final : public OrderEvent {
 public:
  static constexpr std::string_view kName = "Deliver";
  explicit DeliverOrderEvent(Order order);
};

class VORN_API ReturnOrderEvent final : public OrderEvent {
 public:
  static constexpr std::string_view kName = "Return";
  explicit ReturnOrderEvent(Order order);
};

class VORN_API ExchangeOrderEvent final : public OrderEvent {
 public:
  static constexpr std::string_view kName = "Exchange";
  explicit ExchangeOrderEvent(Order order);
};

}  // namespace vorn

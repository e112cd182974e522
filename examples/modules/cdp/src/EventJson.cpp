#include "EventJson.hpp"

#include <memory>
#include <optional>

#include "vorn/events/CartEvent.hpp"
#include "vorn/events/CatalogObjectEvent.hpp"
#include "vorn/events/OrderEvent.hpp"

namespace cdp {
namespace {

using nlohmann::json;

template <class T>
json optionalJson(const std::optional<T>& value) {
  return value ? vorn::toJson(vorn::Value(*value)) : json(nullptr);
}

json lineItemJson(const vorn::LineItem& item) {
  return {{"catalogObjectType", item.catalogObjectType},
          {"catalogObjectId", item.catalogObjectId},
          {"quantity", item.quantity},
          {"price", optionalJson(item.price)},
          {"currency", optionalJson(item.currency)},
          {"attributes", item.attributes ? vorn::toJson(*item.attributes) : json(nullptr)}};
}

json lineItemsJson(const std::vector<vorn::LineItem>& items) {
  json list = json::array();
  for (const auto& item : items)
    list.push_back(lineItemJson(item));
  return list;
}

json orderJson(const vorn::Order& order) {
  return {{"id", order.id},
          {"lineItems", lineItemsJson(order.lineItems)},
          {"totalValue", optionalJson(order.totalValue)},
          {"currency", optionalJson(order.currency)},
          {"attributes", vorn::toJson(order.attributes)}};
}

json catalogObjectJson(const vorn::CatalogObject& object) {
  return {{"type", object.type},
          {"id", object.id},
          {"attributes", vorn::toJson(object.attributes)},
          {"relatedCatalogObjects", object.relatedCatalogObjects}};
}

void addPayload(json& record, const vorn::Event* event) {
  if (const auto* cart = dynamic_cast<const vorn::CartEvent*>(event))
    record["lineItems"] = lineItemsJson(cart->lineItems());
  else if (const auto* order = dynamic_cast<const vorn::OrderEvent*>(event))
    record["order"] = orderJson(order->order());
  else if (const auto* catalog = dynamic_cast<const vorn::CatalogObjectEvent*>(event))
    record["catalogObject"] = catalogObjectJson(catalog->catalogObject());
}

}  // namespace

json eventJson(const vorn::Message& message) {
  json record = {{"id", message.id()},
                 {"name", message.name()},
                 {"category", message.category()},
                 {"producer", message.producer()},
                 {"timestamp", message.timestamp()}};
  if (message.parameters())
    record["attributes"] = vorn::toJson(*message.parameters());
  addPayload(record, message.fromEvent().get());
  return record;
}

}  // namespace cdp

#include <gtest/gtest.h>

#include "vorn/events/CartEvent.hpp"
#include "vorn/events/CatalogObjectEvent.hpp"
#include "vorn/events/IdentityEvent.hpp"
#include "vorn/events/OrderEvent.hpp"

namespace vorn {
namespace {

TEST(IdentityEventTest, ProfileIdIsTheOnlyFieldPresentEvenWhenEmpty) {
  const auto event = IdentityEvent::withProfileId("");
  EXPECT_EQ(event->name(), "IdentityEvent");
  EXPECT_EQ(event->category(), EventCategory::identity);
  ASSERT_TRUE(event->profileId().has_value());
  EXPECT_EQ(*event->profileId(), "");
  EXPECT_FALSE(event->profileAttributes().has_value());
  EXPECT_FALSE(event->attributes().has_value());
}

TEST(IdentityEventTest, ProfileAttributesAndAttributesAreCarriedUnchanged) {
  const auto profile = IdentityEvent::withProfileAttributes({{" $first.name ", "Ann"}});
  EXPECT_FALSE(profile->profileId());
  EXPECT_EQ(*profile->profileAttributes(), (StringDictionary{{" $first.name ", "Ann"}}));
  EXPECT_FALSE(profile->attributes());

  const auto general = IdentityEvent::withAttributes({});
  EXPECT_FALSE(general->profileId());
  EXPECT_FALSE(general->profileAttributes());
  ASSERT_TRUE(general->attributes());
  EXPECT_TRUE(general->attributes()->empty());
}

TEST(IdentityEventTest, SameInputGivesDifferentIds) {
  EXPECT_NE(IdentityEvent::withProfileId("p")->id(), IdentityEvent::withProfileId("p")->id());
}

LineItem shoes() {
  return LineItem{.catalogObjectType = "Product",
                  .catalogObjectId = "SKU-1",
                  .quantity = 2,
                  .price = Decimal::parse("49.90"),
                  .currency = "EUR",
                  .attributes = std::nullopt};
}

TEST(CartEventTest, SingleItemEventsHoldAOneElementList) {
  const AddToCartEvent add(shoes());
  EXPECT_EQ(add.name(), "Add To Cart");
  EXPECT_EQ(add.category(), EventCategory::engagement);
  EXPECT_FALSE(add.attributes());
  ASSERT_EQ(add.lineItems().size(), 1u);
  EXPECT_EQ(add.lineItems()[0], shoes());
  EXPECT_EQ(add.lineItems()[0].price->toString(), "49.90");

  const RemoveFromCartEvent remove(shoes());
  EXPECT_EQ(remove.name(), "Remove From Cart");
  EXPECT_EQ(remove.lineItems().size(), 1u);
}

TEST(CartEventTest, ReplaceCartKeepsTheListAsPassedEvenEmpty) {
  EXPECT_TRUE(ReplaceCartEvent({}).lineItems().empty());
  const ReplaceCartEvent replace({shoes(), shoes()});
  EXPECT_EQ(replace.name(), "Replace Cart");
  EXPECT_EQ(replace.lineItems().size(), 2u);
}

TEST(OrderEventTest, EachClassFixesItsName) {
  const Order order{.id = "O-1",
                    .lineItems = {shoes()},
                    .totalValue = Decimal::parse("99.80"),
                    .currency = "EUR",
                    .attributes = {{"coupon", "X"}}};
  const std::vector<std::pair<std::string, std::shared_ptr<OrderEvent>>> events{
      {"Purchase", std::make_shared<PurchaseOrderEvent>(order)},
      {"Preorder", std::make_shared<PreorderEvent>(order)},
      {"Cancel", std::make_shared<CancelOrderEvent>(order)},
      {"Ship", std::make_shared<ShipOrderEvent>(order)},
      {"Deliver", std::make_shared<DeliverOrderEvent>(order)},
      {"Return", std::make_shared<ReturnOrderEvent>(order)},
      {"Exchange", std::make_shared<ExchangeOrderEvent>(order)},
  };
  for (const auto& [name, event] : events) {
    EXPECT_EQ(event->name(), name);
    EXPECT_EQ(event->category(), EventCategory::engagement);
    EXPECT_FALSE(event->attributes()) << name;
    EXPECT_EQ(event->order(), order);
  }
}

TEST(CatalogObjectEventTest, EachClassFixesItsName) {
  const CatalogObject object{.type = "Product",
                             .id = "SKU-1",
                             .attributes = {{"color", "red"}},
                             .relatedCatalogObjects = {{"Category", {"shoes", "sale"}}}};
  const std::vector<std::pair<std::string, std::shared_ptr<CatalogObjectEvent>>> events{
      {"View Catalog Object", std::make_shared<ViewCatalogObjectEvent>(object)},
      {"View Catalog Object Detail", std::make_shared<ViewCatalogObjectDetailEvent>(object)},
      {"Quick View Catalog Object", std::make_shared<QuickViewCatalogObjectEvent>(object)},
      {"Share Catalog Object", std::make_shared<ShareCatalogObjectEvent>(object)},
      {"Review Catalog Object", std::make_shared<ReviewCatalogObjectEvent>(object)},
      {"Comment Catalog Object", std::make_shared<CommentCatalogObjectEvent>(object)},
      {"Favorite Catalog Object", std::make_shared<FavoriteCatalogObjectEvent>(object)},
  };
  for (const auto& [name, event] : events) {
    EXPECT_EQ(event->name(), name);
    EXPECT_FALSE(event->attributes()) << name;
    EXPECT_EQ(event->catalogObject(), object);
  }
}

}  // namespace
}  // namespace vorn

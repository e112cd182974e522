// FakePushModule: analytics tracking, location, data policy and the feature switches.
#include "FakeAnswer.hpp"

namespace vorn::testing {

bool FakePushModule::setPiIdentifier(const std::optional<std::string>& identifier) {
  return answer("setPiIdentifier", {arg(identifier)}, true);
}

std::optional<std::string> FakePushModule::piIdentifier() {
  return answer<std::optional<std::string>>("piIdentifier", {}, "fake-pi-identifier");
}

void FakePushModule::trackMessageOpened(const Dictionary& userInfo) {
  record("trackMessageOpened", {userInfo});
}

void FakePushModule::trackPageView(const std::string& url, const std::optional<std::string>& title,
                                   const std::optional<std::string>& item,
                                   const std::optional<std::string>& search) {
  record("trackPageView", {url, arg(title), arg(item), arg(search)});
}

void FakePushModule::trackCartContents(const Dictionary& cart) {
  record("trackCartContents", {cart});
}

void FakePushModule::trackCartConversion(const Dictionary& order) {
  record("trackCartConversion", {order});
}

std::optional<Dictionary> FakePushModule::cartItemDictionary(
    const Decimal& price, std::int64_t quantity, const std::string& item,
    const std::optional<std::string>& uniqueId) {
  return answer<std::optional<Dictionary>>(
      "cartItemDictionary", {price, quantity, item, arg(uniqueId)}, Dictionary{{"item", item}});
}

std::optional<Dictionary> FakePushModule::cartDictionary(const std::vector<Dictionary>& cartItem) {
  return answer<std::optional<Dictionary>>("cartDictionary", {arg(cartItem)},
                                           Dictionary{{"cartItem", arg(cartItem)}});
}

std::optional<Dictionary> FakePushModule::orderDictionary(const std::string& orderNumber,
                                                          const Decimal& shipping,
                                                          const Decimal& discount,
                                                          const Dictionary& cart) {
  return answer<std::optional<Dictionary>>("orderDictionary",
                                           {orderNumber, shipping, discount, cart},
                                           Dictionary{{"orderNumber", orderNumber}});
}

void FakePushModule::setLocationDelegate(std::shared_ptr<LocationDelegate> delegate) {
  record("setLocationDelegate", {arg(delegate)});
}

std::optional<Region> FakePushModule::regionFrom(const Dictionary& dictionary) {
  return answer<std::optional<Region>>("regionFrom", {dictionary},
                                       Region{"fake-region", 1.5, 2.5, 100});
}

bool FakePushModule::locationEnabled() {
  return answer("locationEnabled", {}, true);
}

void FakePushModule::startWatchingLocation() {
  record("startWatchingLocation");
}

void FakePushModule::stopWatchingLocation() {
  record("stopWatchingLocation");
}

bool FakePushModule::watchingLocation() {
  return answer("watchingLocation", {}, true);
}

std::optional<PushInterface::StringDictionary> FakePushModule::lastKnownLocation() {
  return answer<std::optional<StringDictionary>>("lastKnownLocation", {},
                                                 StringDictionary{{"latitude", "1.5"}});
}

void FakePushModule::setURLHandlingDelegate(std::shared_ptr<URLHandlingDelegate> delegate) {
  record("setURLHandlingDelegate", {arg(delegate)});
}

bool FakePushModule::resetDataPolicy() {
  return answer("resetDataPolicy", {}, true);
}

bool FakePushModule::isAnalyticsEnabled() {
  return answer("isAnalyticsEnabled", {}, true);
}

void FakePushModule::setAnalyticsEnabled(bool enabled) {
  record("setAnalyticsEnabled", {enabled});
}

bool FakePushModule::isPiAnalyticsEnabled() {
  return answer("isPiAnalyticsEnabled", {}, true);
}

void FakePushModule::setPiAnalyticsEnabled(bool enabled) {
  record("setPiAnalyticsEnabled", {enabled});
}

void FakePushModule::setLocationEnabled(bool enabled) {
  record("setLocationEnabled", {enabled});
}

bool FakePushModule::isLocationEnabled() {
  return answer("isLocationEnabled", {}, true);
}

void FakePushModule::setInboxEnabled(bool enabled) {
  record("setInboxEnabled", {enabled});
}

bool FakePushModule::isInboxEnabled() {
  return answer("isInboxEnabled", {}, true);
}

}  // namespace vorn::testing

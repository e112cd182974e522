// Push facade: analytics tracking, location, data policy and the feature switches, each
// forwarded by the rule in Forwarding.hpp with its own not-ready line and default.
#include "facades/Forwarding.hpp"
#include "vorn/facades/PUSH.hpp"

namespace vorn {

using detail::forwardCall;
using I = PushInterface;

bool PUSH::setPiIdentifier(const std::optional<std::string>& identifier) {
  return forwardCall(ready(), &I::setPiIdentifier, "The `Pi Identifier` not set.", false,
                     identifier);
}

std::optional<std::string> PUSH::piIdentifier() {
  return forwardCall(ready(), &I::piIdentifier, "The `Pi Identifier` not fetched.", std::nullopt);
}

void PUSH::trackMessageOpened(const Dictionary& userInfo) {
  forwardCall(ready(), &I::trackMessageOpened, "The `Message Opened` not tracked.", userInfo);
}

void PUSH::trackPageView(const std::string& url, const std::optional<std::string>& title,
                         const std::optional<std::string>& item,
                         const std::optional<std::string>& search) {
  forwardCall(ready(), &I::trackPageView, "The `Page View` not tracked.", url, title, item, search);
}

void PUSH::trackCartContents(const Dictionary& cart) {
  forwardCall(ready(), &I::trackCartContents, "The `Cart Contents` not tracked.", cart);
}

void PUSH::trackCartConversion(const Dictionary& order) {
  forwardCall(ready(), &I::trackCartConversion, "The `Cart Conversions` not tracked.", order);
}

std::optional<Dictionary> PUSH::cartItemDictionary(const Decimal& price, std::int64_t quantity,
                                                   const std::string& item,
                                                   const std::optional<std::string>& uniqueId) {
  return forwardCall(ready(), &I::cartItemDictionary, "The `Cart Item Dictionary` not fetched.",
                     std::nullopt, price, quantity, item, uniqueId);
}

std::optional<Dictionary> PUSH::cartDictionary(const std::vector<Dictionary>& cartItem) {
  return forwardCall(ready(), &I::cartDictionary, "The `Cart Dictionary` not fetched.",
                     std::nullopt, cartItem);
}

std::optional<Dictionary> PUSH::orderDictionary(const std::string& orderNumber,
                                                const Decimal& shipping, const Decimal& discount,
                                                const Dictionary& cart) {
  return forwardCall(ready(), &I::orderDictionary, "The `Order Dictionary` not fetched.",
                     std::nullopt, orderNumber, shipping, discount, cart);
}

void PUSH::setLocationDelegate(std::shared_ptr<LocationDelegate> delegate) {
  forwardCall(ready(), &I::setLocationDelegate, "The `Location Delegate` not set.",
              std::move(delegate));
}

std::optional<Region> PUSH::regionFrom(const Dictionary& dictionary) {
  return forwardCall(ready(), &I::regionFrom, "The `Region` not fetched.", std::nullopt,
                     dictionary);
}

bool PUSH::locationEnabled() {
  return forwardCall(ready(), &I::locationEnabled, "The `Location Enablement` not fetched.", false);
}

void PUSH::startWatchingLocation() {
  forwardCall(ready(), &I::startWatchingLocation, "The `Location Watching` not started.");
}

void PUSH::stopWatchingLocation() {
  forwardCall(ready(), &I::stopWatchingLocation, "The `Location Watching` not stopped");
}

bool PUSH::watchingLocation() {
  return forwardCall(ready(), &I::watchingLocation, "The `Watching Location` not fetched.", false);
}

std::optional<PUSH::StringDictionary> PUSH::lastKnownLocation() {
  return forwardCall(ready(), &I::lastKnownLocation, "The `Last Known Location` not fetched.",
                     std::nullopt);
}

void PUSH::setURLHandlingDelegate(std::shared_ptr<URLHandlingDelegate> delegate) {
  forwardCall(ready(), &I::setURLHandlingDelegate, "The `URL Handling Delegate` not set.",
              std::move(delegate));
}

bool PUSH::resetDataPolicy() {
  return forwardCall(
      ready(), &I::resetDataPolicy,
      "Push module is not set, To reset data policy, module should be initialized and operational!",
      false);
}

bool PUSH::isAnalyticsEnabled() {
  return forwardCall(
      ready(), &I::isAnalyticsEnabled,
      "`Analytics Enabled` not fetched, module should be initialized and operational!", false);
}

void PUSH::setAnalyticsEnabled(bool enabled) {
  forwardCall(ready(), &I::setAnalyticsEnabled,
              "`Analytics Enabled` not set, module should be initialized and operational!",
              enabled);
}

bool PUSH::isPiAnalyticsEnabled() {
  return forwardCall(
      ready(), &I::isPiAnalyticsEnabled,
      "`PI Analytics Enabled` not fetched, module should be initialized and operational!", false);
}

void PUSH::setPiAnalyticsEnabled(bool enabled) {
  forwardCall(ready(), &I::setPiAnalyticsEnabled,
              "`PI Analytics Enabled` not set, module should be initialized and operational!",
              enabled);
}

void PUSH::setLocationEnabled(bool enabled) {
  forwardCall(ready(), &I::setLocationEnabled,
              "`Location Enabled` not set, module should be initialized and operational!", enabled);
}

bool PUSH::isLocationEnabled() {
  return forwardCall(
      ready(), &I::isLocationEnabled,
      "`Location Enabled` not fetched, module should be initialized and operational!", false);
}

void PUSH::setInboxEnabled(bool enabled) {
  forwardCall(ready(), &I::setInboxEnabled,
              "`Inbox Enabled` not set, module should be initialized and operational!", enabled);
}

bool PUSH::isInboxEnabled() {
  return forwardCall(ready(), &I::isInboxEnabled,
                     "`Inbox Enabled` not fetched, module should be initialized and operational!",
                     false);
}

}  // namespace vorn

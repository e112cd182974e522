// What needs a phone's user interface or location services, and analytics tracking: the
// operations answer their default and say why in one debug line. The cheap parts that need
// no platform (user info, delegates, the cart and order dictionaries) are kept.
#include "PushModule.hpp"

namespace push {
namespace {

constexpr std::string_view kNotificationRequests =
    "Notification requests are not available on this platform.";
constexpr std::string_view kInAppMessages = "In-app messages cannot be shown on this platform.";
constexpr std::string_view kTableViews = "Inbox table views are not available on this platform.";
constexpr std::string_view kLocation = "Location services are not available on this platform.";
constexpr std::string_view kTracking = "Analytics tracking is not sent on this platform.";

}  // namespace

void PushModule::setNotificationRequest(const vorn::NotificationRequest&) {
  unavailable(kNotificationRequests, vorn::LoggerCategory::module);
}

std::optional<vorn::NotificationRequest> PushModule::notificationRequest() {
  unavailable(kNotificationRequests, vorn::LoggerCategory::module);
  return std::nullopt;
}

void PushModule::setNotificationUserInfo(const vorn::Dictionary& userInfo) {
  std::lock_guard lock(mutex_);
  notificationUserInfo_ = userInfo;
}

vorn::Dictionary PushModule::notificationUserInfo() {
  std::lock_guard lock(mutex_);
  return notificationUserInfo_;
}

void PushModule::setEventDelegate(std::shared_ptr<vorn::InAppMessageEventDelegate> delegate) {
  std::lock_guard lock(mutex_);
  eventDelegate_ = std::move(delegate);
}

std::optional<std::string> PushModule::messageId(const vorn::Dictionary& forMessage) {
  const auto it = forMessage.find("id");
  const std::string* id = it == forMessage.end() ? nullptr : it->second.get<std::string>();
  return id ? std::optional<std::string>(*id) : std::nullopt;
}

void PushModule::showInAppMessage(const std::string&) {
  unavailable(kInAppMessages, vorn::LoggerCategory::interface);
}

bool PushModule::setInAppMessage(const std::optional<std::string>&) {
  unavailable(kInAppMessages, vorn::LoggerCategory::interface);
  return false;
}

std::shared_ptr<vorn::InboxTableViewDataSource> PushModule::inboxMessagesTableViewDataSourceFor(
    std::shared_ptr<vorn::TableView>) {
  unavailable(kTableViews, vorn::LoggerCategory::interface);
  return nullptr;
}

std::shared_ptr<vorn::InboxTableViewDelegate> PushModule::inboxMessagesTableViewDelegateFor(
    std::shared_ptr<vorn::TableView>, std::shared_ptr<vorn::InboxTableViewDataSource>) {
  unavailable(kTableViews, vorn::LoggerCategory::interface);
  return nullptr;
}

void PushModule::trackMessageOpened(const vorn::Dictionary&) {
  unavailable(kTracking, vorn::LoggerCategory::event);
}

void PushModule::trackPageView(const std::string&, const std::optional<std::string>&,
                               const std::optional<std::string>&,
                               const std::optional<std::string>&) {
  unavailable(kTracking, vorn::LoggerCategory::event);
}

void PushModule::trackCartContents(const vorn::Dictionary&) {
  unavailable(kTracking, vorn::LoggerCategory::event);
}

void PushModule::trackCartConversion(const vorn::Dictionary&) {
  unavailable(kTracking, vorn::LoggerCategory::event);
}

std::optional<vorn::Dictionary> PushModule::cartItemDictionary(
    const vorn::Decimal& price, std::int64_t quantity, const std::string& item,
    const std::optional<std::string>& uniqueId) {
  vorn::Dictionary entry{{"price", price}, {"quantity", quantity}, {"item", item}};
  if (uniqueId)
    entry["uniqueId"] = *uniqueId;
  return entry;
}

std::optional<vorn::Dictionary> PushModule::cartDictionary(
    const std::vector<vorn::Dictionary>& cartItem) {
  vorn::Array items(cartItem.begin(), cartItem.end());
  return vorn::Dictionary{{"cartItem", std::move(items)}};
}

std::optional<vorn::Dictionary> PushModule::orderDictionary(const std::string& orderNumber,
                                                            const vorn::Decimal& shipping,
                                                            const vorn::Decimal& discount,
                                                            const vorn::Dictionary& cart) {
  return vorn::Dictionary{
      {"orderNumber", orderNumber}, {"shipping", shipping}, {"discount", discount}, {"cart", cart}};
}

void PushModule::setLocationDelegate(std::shared_ptr<vorn::LocationDelegate>) {
  unavailable(kLocation, vorn::LoggerCategory::location);
}

std::optional<vorn::Region> PushModule::regionFrom(const vorn::Dictionary&) {
  unavailable(kLocation, vorn::LoggerCategory::location);
  return std::nullopt;
}

bool PushModule::locationEnabled() {
  unavailable(kLocation, vorn::LoggerCategory::location);
  return false;
}

void PushModule::startWatchingLocation() {
  unavailable(kLocation, vorn::LoggerCategory::location);
}

void PushModule::stopWatchingLocation() {
  unavailable(kLocation, vorn::LoggerCategory::location);
}

bool PushModule::watchingLocation() {
  unavailable(kLocation, vorn::LoggerCategory::location);
  return false;
}

std::optional<PushModule::StringDictionary> PushModule::lastKnownLocation() {
  unavailable(kLocation, vorn::LoggerCategory::location);
  return std::nullopt;
}

void PushModule::setLocationEnabled(bool) {
  unavailable(kLocation, vorn::LoggerCategory::location);
}

bool PushModule::isLocationEnabled() {
  unavailable(kLocation, vorn::LoggerCategory::location);
  return false;
}

void PushModule::setURLHandlingDelegate(std::shared_ptr<vorn::URLHandlingDelegate> delegate) {
  std::lock_guard lock(mutex_);
  urlHandlingDelegate_ = std::move(delegate);
}

}  // namespace push

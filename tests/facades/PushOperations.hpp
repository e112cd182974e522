// Every operation of the push interface as a row: the name the fake module records, the line
// the facade writes when the module is not ready, the default it then answers, and a call
// that makes the operation and describes its answer as text, so that one loop can compare
// the facade with the module for every operation.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "vorn/facades/PushInterface.hpp"

namespace vorn::facades_test {

inline const std::string kNothing = "nothing";
inline const std::string kAbsent = "absent";

inline std::string describe(bool value) {
  return value ? "true" : "false";
}
inline std::string describe(std::size_t count) {
  return std::to_string(count);
}
inline std::string describe(const std::string& text) {
  return "\"" + text + "\"";
}
inline std::string describe(const Dictionary& dictionary) {
  return toJson(dictionary).dump();
}
inline std::string describe(const PushInterface::Tags& tags) {
  return nlohmann::json(tags).dump();
}
inline std::string describe(const PushInterface::StringDictionary& dictionary) {
  return nlohmann::json(dictionary).dump();
}
inline std::string describe(const PushInterface::Messages& messages) {
  std::string text;
  for (const Dictionary& message : messages)
    text += describe(message);
  return "[" + text + "]";
}
inline std::string describe(const NotificationRequest& request) {
  return "request " + request.identifier;
}
inline std::string describe(const Region& region) {
  return "region " + region.identifier;
}
template <class T>
std::string describe(const std::shared_ptr<T>& object) {
  return object ? "object" : kAbsent;
}
template <class T>
std::string describe(const std::optional<T>& value) {
  return value ? describe(*value) : kAbsent;
}

struct PushOperation {
  std::string name;
  std::string notReadyLine;
  std::string fallback;
  std::function<std::string(PushInterface&)> call;
};

using P = PushInterface&;
inline const Dictionary kMessage{{"id", "m-1"}};
inline const std::optional<std::string> kSome = "some";

inline const std::vector<PushOperation>& pushOperations() {
  static const std::vector<PushOperation> table{
      {"contactKey", "The `Contact key` not fetched.", kAbsent,
       [](P p) { return describe(p.contactKey()); }},
      {"addTag", "The `Tag` not added.", "false", [](P p) { return describe(p.addTag("t")); }},
      {"addTags", "The `Tags` not added.", kAbsent,
       [](P p) {
         return describe(p.addTags({"a", "b"}));
       }},
      {"removeTag", "The `Tag` not removed.", "false",
       [](P p) { return describe(p.removeTag("t")); }},
      {"tags", "The `Tags` not fetched.", kAbsent, [](P p) { return describe(p.tags()); }},
      {"setDeviceToken", "The `Device Token` not set.", kNothing,
       [](P p) {
         return p.setDeviceToken({1, 2, 3}), kNothing;
       }},
      {"setDebugLoggingEnabled", "The `Debug Logging mode` not set.", kNothing,
       [](P p) { return p.setDebugLoggingEnabled(true), kNothing; }},
      {"attributes", "The `Attributes` not fetched.", kAbsent,
       [](P p) { return describe(p.attributes()); }},
      {"deviceToken", "The `Device Token` not fetched.", kAbsent,
       [](P p) { return describe(p.deviceToken()); }},
      {"accessToken", "The `Access Token` not fetched.", kAbsent,
       [](P p) { return describe(p.accessToken()); }},
      {"deviceIdentifier", "The `Device Identitfier` not fetched.", kAbsent,
       [](P p) { return describe(p.deviceIdentifier()); }},
      {"setNotificationRequest", "The `Notification Request` not set.", kNothing,
       [](P p) { return p.setNotificationRequest({.identifier = "n-1"}), kNothing; }},
      {"notificationRequest", "The `Notification Request` not fetched.", kAbsent,
       [](P p) { return describe(p.notificationRequest()); }},
      {"setNotificationUserInfo", "The `Notification User Info` not fetched.", kNothing,
       [](P p) { return p.setNotificationUserInfo(kMessage), kNothing; }},
      {"notificationUserInfo", "The `Notification User Info` not fetched.", "{}",
       [](P p) { return describe(p.notificationUserInfo()); }},
      {"setPushEnabled", "The `Push Enabled` not set.", kNothing,
       [](P p) { return p.setPushEnabled(true), kNothing; }},
      {"pushEnabled", "The `Push Enabled` not fetched.", "false",
       [](P p) { return describe(p.pushEnabled()); }},
      {"refresh", "The data was not refreshed.", "false",
       [](P p) { return describe(p.refresh(nullptr)); }},
      {"setRegistrationCallback", "The `Registration Callback` was not set. Push module is nil.",
       kNothing, [](P p) { return p.setRegistrationCallback([](const Dictionary&) {}), kNothing; }},
      {"unsetRegistrationCallback",
       "The `Registration Callback` was not unset. Push module is nil.", kNothing,
       [](P p) { return p.unsetRegistrationCallback(), kNothing; }},
      {"setSignedString", "The `Signed String` not set.", "false",
       [](P p) { return describe(p.setSignedString(kSome)); }},
      {"signedString", "The `Signed String` not fetched.", kAbsent,
       [](P p) { return describe(p.signedString()); }},
      {"setEventDelegate", "The `Event Delegate` not set.", kNothing,
       [](P p) { return p.setEventDelegate(nullptr), kNothing; }},
      {"messageId", "The `Message ID` not fetched.", kAbsent,
       [](P p) { return describe(p.messageId(kMessage)); }},
      {"showInAppMessage", "The `In-app message` not shown.", kNothing,
       [](P p) { return p.showInAppMessage("m-1"), kNothing; }},
      {"setInAppMessage", "The `In-app message font name` not set.", "false",
       [](P p) { return describe(p.setInAppMessage(kSome)); }},
      {"getAllMessages", "The `Messages` not fetched.", kAbsent,
       [](P p) { return describe(p.getAllMessages()); }},
      {"getUnreadMessages", "The `Unread Messages` not fetched.", kAbsent,
       [](P p) { return describe(p.getUnreadMessages()); }},
      {"getReadMessages", "The `Read Messages` not fetched.", kAbsent,
       [](P p) { return describe(p.getReadMessages()); }},
      {"getDeletedMessages", "The `Deleted Messages` not fetched.", kAbsent,
       [](P p) { return describe(p.getDeletedMessages()); }},
      {"getAllMessagesCount", "The `All Messages Count` not fetched.", "0",
       [](P p) { return describe(p.getAllMessagesCount()); }},
      {"getUnreadMessagesCount", "The `Unread Messages Count` not fetched.", "0",
       [](P p) { return describe(p.getUnreadMessagesCount()); }},
      {"getReadMessagesCount", "The `Read Messages Count` not fetched.", "0",
       [](P p) { return describe(p.getReadMessagesCount()); }},
      {"getDeletedMessagesCount", "The `Deleted Messages Count` not fetched.", "0",
       [](P p) { return describe(p.getDeletedMessagesCount()); }},
      {"markMessageRead", "The Message not marked as `read`.", "false",
       [](P p) { return describe(p.markMessageRead(kMessage)); }},
      {"markMessageDeleted", "The Message not marked as `deleted`.", "false",
       [](P p) { return describe(p.markMessageDeleted(kMessage)); }},
      {"markMessageWithIdRead", "The Message not marked as `read` by ID.", "false",
       [](P p) { return describe(p.markMessageWithIdRead("m-1")); }},
      {"markMessageWithIdDeleted", "The Message not marked as `deleted` by ID.", "false",
       [](P p) { return describe(p.markMessageWithIdDeleted("m-1")); }},
      {"markAllMessagesRead", "The Messages not marked as `read`.", "false",
       [](P p) { return describe(p.markAllMessagesRead()); }},
      {"markAllMessagesDeleted", "The Messages not marked as `deleted`.", "false",
       [](P p) { return describe(p.markAllMessagesDeleted()); }},
      {"refreshMessages", "The Messages not `refreshed`.", "false",
       [](P p) { return describe(p.refreshMessages()); }},
      {"inboxMessagesTableViewDataSourceFor",
       "The `Inbox Messages Table View Data Source For Table View` not set.", kAbsent,
       [](P p) { return describe(p.inboxMessagesTableViewDataSourceFor(nullptr)); }},
      {"inboxMessagesTableViewDelegateFor",
       "The `Inbox Messages Table View Delegate For Table View` not set.", kAbsent,
       [](P p) { return describe(p.inboxMessagesTableViewDelegateFor(nullptr, nullptr)); }},
      {"setPiIdentifier", "The `Pi Identifier` not set.", "false",
       [](P p) { return describe(p.setPiIdentifier(std::nullopt)); }},
      {"piIdentifier", "The `Pi Identifier` not fetched.", kAbsent,
       [](P p) { return describe(p.piIdentifier()); }},
      {"trackMessageOpened", "The `Message Opened` not tracked.", kNothing,
       [](P p) { return p.trackMessageOpened(kMessage), kNothing; }},
      {"trackPageView", "The `Page View` not tracked.", kNothing,
       [](P p) { return p.trackPageView("https://x.test", kSome, std::nullopt, kSome), kNothing; }},
      {"trackCartContents", "The `Cart Contents` not tracked.", kNothing,
       [](P p) { return p.trackCartContents(kMessage), kNothing; }},
      {"trackCartConversion", "The `Cart Conversions` not tracked.", kNothing,
       [](P p) { return p.trackCartConversion(kMessage), kNothing; }},
      {"cartItemDictionary", "The `Cart Item Dictionary` not fetched.", kAbsent,
       [](P p) { return describe(p.cartItemDictionary(Decimal(1990, 2), 3, "i", kSome)); }},
      {"cartDictionary", "The `Cart Dictionary` not fetched.", kAbsent,
       [](P p) { return describe(p.cartDictionary({kMessage})); }},
      {"orderDictionary", "The `Order Dictionary` not fetched.", kAbsent,
       [](P p) {
         return describe(p.orderDictionary("o-1", Decimal(5, 0), Decimal(1, 0), kMessage));
       }},
      {"setLocationDelegate", "The `Location Delegate` not set.", kNothing,
       [](P p) { return p.setLocationDelegate(nullptr), kNothing; }},
      {"regionFrom", "The `Region` not fetched.", kAbsent,
       [](P p) { return describe(p.regionFrom(kMessage)); }},
      {"locationEnabled", "The `Location Enablement` not fetched.", "false",
       [](P p) { return describe(p.locationEnabled()); }},
      {"startWatchingLocation", "The `Location Watching` not started.", kNothing,
       [](P p) { return p.startWatchingLocation(), kNothing; }},
      {"stopWatchingLocation", "The `Location Watching` not stopped", kNothing,
       [](P p) { return p.stopWatchingLocation(), kNothing; }},
      {"watchingLocation", "The `Watching Location` not fetched.", "false",
       [](P p) { return describe(p.watchingLocation()); }},
      {"lastKnownLocation", "The `Last Known Location` not fetched.", kAbsent,
       [](P p) { return describe(p.lastKnownLocation()); }},
      {"setURLHandlingDelegate", "The `URL Handling Delegate` not set.", kNothing,
       [](P p) { return p.setURLHandlingDelegate(nullptr), kNothing; }},
      {"resetDataPolicy",
       "Push module is not set, To reset data policy, module should be initialized and "
       "operational!",
       "false", [](P p) { return describe(p.resetDataPolicy()); }},
      {"isAnalyticsEnabled",
       "`Analytics Enabled` not fetched, module should be initialized and operational!", "false",
       [](P p) { return describe(p.isAnalyticsEnabled()); }},
      {"setAnalyticsEnabled",
       "`Analytics Enabled` not set, module should be initialized and operational!", kNothing,
       [](P p) { return p.setAnalyticsEnabled(true), kNothing; }},
      {"isPiAnalyticsEnabled",
       "`PI Analytics Enabled` not fetched, module should be initialized and operational!", "false",
       [](P p) { return describe(p.isPiAnalyticsEnabled()); }},
      {"setPiAnalyticsEnabled",
       "`PI Analytics Enabled` not set, module should be initialized and operational!", kNothing,
       [](P p) { return p.setPiAnalyticsEnabled(true), kNothing; }},
      {"setLocationEnabled",
       "`Location Enabled` not set, module should be initialized and operational!", kNothing,
       [](P p) { return p.setLocationEnabled(true), kNothing; }},
      {"isLocationEnabled",
       "`Location Enabled` not fetched, module should be initialized and operational!", "false",
       [](P p) { return describe(p.isLocationEnabled()); }},
      {"setInboxEnabled", "`Inbox Enabled` not set, module should be initialized and operational!",
       kNothing, [](P p) { return p.setInboxEnabled(true), kNothing; }},
      {"isInboxEnabled",
       "`Inbox Enabled` not fetched, module should be initialized and operational!", "false",
       [](P p) { return describe(p.isInboxEnabled()); }},
  };
  return table;
}

}  // namespace vorn::facades_test

// PushInterface: what the push module offers the app - registration data, tags, tokens,
// notifications, in-app messages, the inbox, analytics, location and data policy.
//
// A push module implements it besides VORNModule; the PUSH facade finds it by
// std::dynamic_pointer_cast from the attached module, so a module that does not derive from
// it is never called. The facade implements it as well, forwarding each call while the
// module is operational, which is why requestPushSdk() hands the facade out as this type.
//
// Absent results are std::optional or null pointers and stay different from empty ones.
// Callbacks and delegates handed in are kept by the module until replaced; an empty
// std::function or a null delegate means "none".
//
// Ownership: implementations are held by std::shared_ptr. Thread safety: every member may be
// called from any thread, possibly at once, and must not throw.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "vorn/base/Bytes.hpp"
#include "vorn/base/Decimal.hpp"
#include "vorn/base/Export.hpp"
#include "vorn/base/Value.hpp"
#include "vorn/facades/BackgroundFetchResult.hpp"
#include "vorn/facades/InAppMessageEventDelegate.hpp"
#include "vorn/facades/InboxTableViewDataSource.hpp"
#include "vorn/facades/InboxTableViewDelegate.hpp"
#include "vorn/facades/LocationDelegate.hpp"
#include "vorn/facades/NotificationRequest.hpp"
#include "vorn/facades/Region.hpp"
#include "vorn/facades/TableView.hpp"
#include "vorn/facades/URLHandlingDelegate.hpp"
#include "vorn/identity/ModuleIdentity.hpp"

namespace vorn {

class VORN_API PushInterface {
 public:
  using Tags = std::set<std::string>;
  using Messages = std::vector<Dictionary>;
  using StringDictionary = std::map<std::string, std::string>;
  /// Told how a refresh ended; may be empty.
  using FetchCompletionHandler = std::function<void(BackgroundFetchResult)>;
  /// Receives the registration the module sent to its back end.
  using RegistrationCallback = std::function<void(const Dictionary&)>;

  virtual ~PushInterface();

  /// Who the module knows the user to be; absent when it has nothing to report.
  virtual std::optional<ModuleIdentity> getIdentity() = 0;

  // Registration: contact, tags, attributes, tokens.
  virtual std::optional<std::string> contactKey() = 0;
  virtual bool addTag(const std::string& tag) = 0;
  /// The tags that were added.
  virtual std::optional<Tags> addTags(const std::vector<std::string>& tags) = 0;
  virtual bool removeTag(const std::string& tag) = 0;
  virtual std::optional<Tags> tags() = 0;
  virtual void setDeviceToken(const Bytes& token) = 0;
  virtual void setDebugLoggingEnabled(bool enabled) = 0;
  virtual std::optional<Dictionary> attributes() = 0;
  virtual std::optional<std::string> deviceToken() = 0;
  virtual std::optional<std::string> accessToken() = 0;
  virtual std::optional<std::string> deviceIdentifier() = 0;

  // Notifications.
  virtual void setNotificationRequest(const NotificationRequest& request) = 0;
  virtual std::optional<NotificationRequest> notificationRequest() = 0;
  virtual void setNotificationUserInfo(const Dictionary& userInfo) = 0;
  virtual Dictionary notificationUserInfo() = 0;
  virtual void setPushEnabled(bool enabled) = 0;
  virtual bool pushEnabled() = 0;
  /// Fetches new data; the handler is told how it went.
  virtual bool refresh(FetchCompletionHandler fetchCompletionHandler) = 0;
  virtual void setRegistrationCallback(RegistrationCallback callback) = 0;
  virtual void unsetRegistrationCallback() = 0;
  virtual bool setSignedString(const std::optional<std::string>& signedString) = 0;
  virtual std::optional<std::string> signedString() = 0;

  // In-app messages.
  virtual void setEventDelegate(std::shared_ptr<InAppMessageEventDelegate> delegate) = 0;
  virtual std::optional<std::string> messageId(const Dictionary& forMessage) = 0;
  virtual void showInAppMessage(const std::string& messageId) = 0;
  virtual bool setInAppMessage(const std::optional<std::string>& fontName) = 0;

  // The inbox.
  virtual std::optional<Messages> getAllMessages() = 0;
  virtual std::optional<Messages> getUnreadMessages() = 0;
  virtual std::optional<Messages> getReadMessages() = 0;
  virtual std::optional<Messages> getDeletedMessages() = 0;
  virtual std::size_t getAllMessagesCount() = 0;
  virtual std::size_t getUnreadMessagesCount() = 0;
  virtual std::size_t getReadMessagesCount() = 0;
  virtual std::size_t getDeletedMessagesCount() = 0;
  virtual bool markMessageRead(const Dictionary& message) = 0;
  virtual bool markMessageDeleted(const Dictionary& message) = 0;
  virtual bool markMessageWithIdRead(const std::string& messageId) = 0;
  virtual bool markMessageWithIdDeleted(const std::string& messageId) = 0;
  virtual bool markAllMessagesRead() = 0;
  virtual bool markAllMessagesDeleted() = 0;
  virtual bool refreshMessages() = 0;
  virtual std::shared_ptr<InboxTableViewDataSource> inboxMessagesTableViewDataSourceFor(
      std::shared_ptr<TableView> tableView) = 0;
  virtual std::shared_ptr<InboxTableViewDelegate> inboxMessagesTableViewDelegateFor(
      std::shared_ptr<TableView> tableView,
      std::shared_ptr<InboxTableViewDataSource> dataSource) = 0;

  // Analytics tracking.
  virtual bool setPiIdentifier(const std::optional<std::string>& identifier) = 0;
  virtual std::optional<std::string> piIdentifier() = 0;
  virtual void trackMessageOpened(const Dictionary& userInfo) = 0;
  virtual void trackPageView(const std::string& url, const std::optional<std::string>& title,
                             const std::optional<std::string>& item,
                             const std::optional<std::string>& search) = 0;
  virtual void trackCartContents(const Dictionary& cart) = 0;
  virtual void trackCartConversion(const Dictionary& order) = 0;
  virtual std::optional<Dictionary> cartItemDictionary(
      const Decimal& price, std::int64_t quantity, const std::string& item,
      const std::optional<std::string>& uniqueId) = 0;
  virtual std::optional<Dictionary> cartDictionary(const std::vector<Dictionary>& cartItem) = 0;
  virtual std::optional<Dictionary> orderDictionary(const std::string& orderNumber,
                                                    const Decimal& shipping,
                                                    const Decimal& discount,
                                                    const Dictionary& cart) = 0;

  // Location.
  virtual void setLocationDelegate(std::shared_ptr<LocationDelegate> delegate) = 0;
  virtual std::optional<Region> regionFrom(const Dictionary& dictionary) = 0;
  virtual bool locationEnabled() = 0;
  virtual void startWatchingLocation() = 0;
  virtual void stopWatchingLocation() = 0;
  virtual bool watchingLocation() = 0;
  virtual std::optional<StringDictionary> lastKnownLocation() = 0;
  virtual void setURLHandlingDelegate(std::shared_ptr<URLHandlingDelegate> delegate) = 0;

  // Data policy and feature switches.
  /// Forgets what the module collected under the current merge policy.
  virtual bool resetDataPolicy() = 0;
  virtual bool isAnalyticsEnabled() = 0;
  virtual void setAnalyticsEnabled(bool enabled) = 0;
  virtual bool isPiAnalyticsEnabled() = 0;
  virtual void setPiAnalyticsEnabled(bool enabled) = 0;
  virtual void setLocationEnabled(bool enabled) = 0;
  virtual bool isLocationEnabled() = 0;
  virtual void setInboxEnabled(bool enabled) = 0;
  virtual bool isInboxEnabled() = 0;
};

}  // namespace vorn

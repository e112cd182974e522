// PUSH: the push module's facade, the app's one way to it.
//
// Accepts module versions "8.1.0" to "8.9.9". Every PushInterface operation forwards to the
// attached module's PushInterface while it is operational and returns its result unchanged,
// absent included. Otherwise it logs, in category `interface`, "Module push is not
// initialized. You need to initialize before using. Current status: <status>" and the
// operation's own line, and answers its default (false, 0, absent, an empty dictionary for
// notificationUserInfo(), or nothing). getStatus() always answers; getIdentity() answers
// absent without a line of its own.
//
// Requests for the push module (requestPushSdk) made before it is operational are kept, in
// order, and later run one after another on the serial queue
// "com.quorvantis.tessarine.push.DeferredCallsQueue": when a request arrives once the module
// is operational, or when the module-ready handling calls releaseDeferredCalls().
// tearDown() drops them unrun.
//
// Ownership: shared() is created on first use and never destroyed; deferred requests are
// kept until they run or are dropped. Thread safety: every member may be called from any
// thread. The status is read and written under the facade's status lock; forwarded calls
// and requests run with no facade lock held, so they may call back into the facade.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/core/DeferredCall.hpp"
#include "vorn/facades/ModuleFacade.hpp"
#include "vorn/facades/PushInterface.hpp"
#include "vorn/runtime/DispatchQueue.hpp"

namespace vorn {

class VORN_API PUSH final : public ModuleFacade, public PushInterface {
 public:
  /// A request for the push module; it receives this facade.
  using Request = std::function<void(std::shared_ptr<PushInterface> push)>;

  static std::shared_ptr<PUSH> shared();

  ModuleStatus getStatus() const override;
  void setStatus(ModuleStatus status) override;

  /// Operational: calls `request` at once on this thread, then releases the deferred
  /// requests. Otherwise keeps it, to run later on the deferred-calls queue.
  void requestPushSdk(Request request);
  /// Hands every kept request, oldest first, to the deferred-calls queue and forgets them.
  void releaseDeferredCalls();
  /// Logs "Tearing down module: push. All deferred calls will be removed." (category `sdk`)
  /// and drops the kept requests unrun. The module and the status are left as they are.
  void tearDown();

  std::optional<ModuleIdentity> getIdentity() override;
  std::optional<std::string> contactKey() override;
  bool addTag(const std::string& tag) override;
  std::optional<Tags> addTags(const std::vector<std::string>& tags) override;
  bool removeTag(const std::string& tag) override;
  std::optional<Tags> tags() override;
  void setDeviceToken(const Bytes& token) override;
  void setDebugLoggingEnabled(bool enabled) override;
  std::optional<Dictionary> attributes() override;
  std::optional<std::string> deviceToken() override;
  std::optional<std::string> accessToken() override;
  std::optional<std::string> deviceIdentifier() override;
  void setNotificationRequest(const NotificationRequest& request) override;
  std::optional<NotificationRequest> notificationRequest() override;
  void setNotificationUserInfo(const Dictionary& userInfo) override;
  Dictionary notificationUserInfo() override;
  void setPushEnabled(bool enabled) override;
  bool pushEnabled() override;
  /// Not ready: the handler is not called.
  bool refresh(FetchCompletionHandler fetchCompletionHandler) override;
  void setRegistrationCallback(RegistrationCallback callback) override;
  void unsetRegistrationCallback() override;
  bool setSignedString(const std::optional<std::string>& signedString) override;
  std::optional<std::string> signedString() override;
  void setEventDelegate(std::shared_ptr<InAppMessageEventDelegate> delegate) override;
  std::optional<std::string> messageId(const Dictionary& forMessage) override;
  void showInAppMessage(const std::string& messageId) override;
  bool setInAppMessage(const std::optional<std::string>& fontName) override;
  std::optional<Messages> getAllMessages() override;
  std::optional<Messages> getUnreadMessages() override;
  std::optional<Messages> getReadMessages() override;
  std::optional<Messages> getDeletedMessages() override;
  std::size_t getAllMessagesCount() override;
  std::size_t getUnreadMessagesCount() override;
  std::size_t getReadMessagesCount() override;
  std::size_t getDeletedMessagesCount() override;
  bool markMessageRead(const Dictionary& message) override;
  bool markMessageDeleted(const Dictionary& message) override;
  bool markMessageWithIdRead(const std::string& messageId) override;
  bool markMessageWithIdDeleted(const std::string& messageId) override;
  bool markAllMessagesRead() override;
  bool markAllMessagesDeleted() override;
  bool refreshMessages() override;
  std::shared_ptr<InboxTableViewDataSource> inboxMessagesTableViewDataSourceFor(
      std::shared_ptr<TableView> tableView) override;
  std::shared_ptr<InboxTableViewDelegate> inboxMessagesTableViewDelegateFor(
      std::shared_ptr<TableView> tableView,
      std::shared_ptr<InboxTableViewDataSource> dataSource) override;
  bool setPiIdentifier(const std::optional<std::string>& identifier) override;
  std::optional<std::string> piIdentifier() override;
  void trackMessageOpened(const Dictionary& userInfo) override;
  void trackPageView(const std::string& url, const std::optional<std::string>& title,
                     const std::optional<std::string>& item,
                     const std::optional<std::string>& search) override;
  void trackCartContents(const Dictionary& cart) override;
  void trackCartConversion(const Dictionary& order) override;
  std::optional<Dictionary> cartItemDictionary(const Decimal& price, std::int64_t quantity,
                                               const std::string& item,
                                               const std::optional<std::string>& uniqueId) override;
  std::optional<Dictionary> cartDictionary(const std::vector<Dictionary>& cartItem) override;
  std::optional<Dictionary> orderDictionary(const std::string& orderNumber, const Decimal& shipping,
                                            const Decimal& discount,
                                            const Dictionary& cart) override;
  void setLocationDelegate(std::shared_ptr<LocationDelegate> delegate) override;
  std::optional<Region> regionFrom(const Dictionary& dictionary) override;
  bool locationEnabled() override;
  void startWatchingLocation() override;
  void stopWatchingLocation() override;
  bool watchingLocation() override;
  std::optional<StringDictionary> lastKnownLocation() override;
  void setURLHandlingDelegate(std::shared_ptr<URLHandlingDelegate> delegate) override;
  bool resetDataPolicy() override;
  bool isAnalyticsEnabled() override;
  void setAnalyticsEnabled(bool enabled) override;
  bool isPiAnalyticsEnabled() override;
  void setPiAnalyticsEnabled(bool enabled) override;
  void setLocationEnabled(bool enabled) override;
  bool isLocationEnabled() override;
  void setInboxEnabled(bool enabled) override;
  bool isInboxEnabled() override;

 private:
  PUSH();
  /// The module when the facade is ready; null, after the readiness line, otherwise.
  std::shared_ptr<PushInterface> ready() const;

  mutable std::mutex statusLock_;
  ModuleStatus status_ = ModuleStatus::inactive;  // guarded by statusLock_
  Atomic<std::vector<DeferredCall>> deferredCalls_;
  DispatchQueue deferredCallsQueue_{"com.quorvantis.tessarine.push.DeferredCallsQueue"};
};

}  // namespace vorn

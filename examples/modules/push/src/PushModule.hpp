// PushModule: the running push module - a VORNModule the core starts and tears down, the
// PushInterface the PUSH facade forwards to, and the owner of the listeners that feed it.
//
// Network work (registration, inbox fetches and marks) runs on the module's serial queue,
// never on the caller's thread; each queued block holds the module weakly and does nothing
// once the module is gone or torn down. Registration changes coalesce: while a send is queued,
// further changes only update what it will send. A failed send is retried once when the
// network manager's deadline for it has passed, if it stored one; otherwise it waits for the
// next change, foreground or start.
//
// The operations are defined by theme: PushModule.cpp (life cycle, state, sending),
// PushModuleRegistration.cpp, PushModuleInbox.cpp, PushModuleSettings.cpp and
// PushModulePlatform.cpp (what this platform cannot do, and analytics).
//
// Ownership: made by start() and held by std::shared_ptr (by the PUSH facade). Thread safety:
// every member may be called from any thread, possibly at once.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "Inbox.hpp"
#include "PushAuthenticator.hpp"
#include "PushListeners.hpp"
#include "PushLog.hpp"
#include "Registration.hpp"
#include "push/PushModule.hpp"
#include "vorn/core/VORNModule.hpp"
#include "vorn/core/VORNSdkComponents.hpp"
#include "vorn/events/IdentityEvent.hpp"
#include "vorn/facades/PushInterface.hpp"
#include "vorn/runtime/DelayedWork.hpp"
#include "vorn/runtime/DispatchQueue.hpp"

namespace push {

class PushModule final : public vorn::VORNModule,
                         public vorn::PushInterface,
                         public std::enable_shared_from_this<PushModule> {
  struct Passkey {};

 public:
  /// The label of the module's serial queue.
  static constexpr std::string_view kQueueLabel = "com.quorvantis.tessarine.push.module";

  /// Restores the module's state, registers its behaviour observer and sends a registration
  /// left dirty by the previous run.
  static std::shared_ptr<PushModule> start(const PushModuleConfig& config,
                                           std::shared_ptr<vorn::VORNSdkComponents> components);

  PushModule(Passkey, const PushModuleConfig& config,
             std::shared_ptr<vorn::VORNSdkComponents> components);
  ~PushModule() override;

  // VORNModule.
  void tearDown() override;
  vorn::Dictionary stateProperties() const override;
  std::shared_ptr<vorn::Subscriber> asSubscriber() override;

  // What the listeners forward.
  void onForeground();
  void onAppVersionChanged();
  void onIdentity(const vorn::IdentityEvent& event);

  // PushInterface.
  std::optional<vorn::ModuleIdentity> getIdentity() override;
  std::optional<std::string> contactKey() override;
  bool addTag(const std::string& tag) override;
  std::optional<Tags> addTags(const std::vector<std::string>& tags) override;
  bool removeTag(const std::string& tag) override;
  std::optional<Tags> tags() override;
  void setDeviceToken(const vorn::Bytes& token) override;
  void setDebugLoggingEnabled(bool enabled) override;
  std::optional<vorn::Dictionary> attributes() override;
  std::optional<std::string> deviceToken() override;
  std::optional<std::string> accessToken() override;
  std::optional<std::string> deviceIdentifier() override;
  void setNotificationRequest(const vorn::NotificationRequest& request) override;
  std::optional<vorn::NotificationRequest> notificationRequest() override;
  void setNotificationUserInfo(const vorn::Dictionary& userInfo) override;
  vorn::Dictionary notificationUserInfo() override;
  void setPushEnabled(bool enabled) override;
  bool pushEnabled() override;
  bool refresh(FetchCompletionHandler fetchCompletionHandler) override;
  void setRegistrationCallback(RegistrationCallback callback) override;
  void unsetRegistrationCallback() override;
  bool setSignedString(const std::optional<std::string>& signedString) override;
  std::optional<std::string> signedString() override;
  void setEventDelegate(std::shared_ptr<vorn::InAppMessageEventDelegate> delegate) override;
  std::optional<std::string> messageId(const vorn::Dictionary& forMessage) override;
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
  bool markMessageRead(const vorn::Dictionary& message) override;
  bool markMessageDeleted(const vorn::Dictionary& message) override;
  bool markMessageWithIdRead(const std::string& messageId) override;
  bool markMessageWithIdDeleted(const std::string& messageId) override;
  bool markAllMessagesRead() override;
  bool markAllMessagesDeleted() override;
  bool refreshMessages() override;
  std::shared_ptr<vorn::InboxTableViewDataSource> inboxMessagesTableViewDataSourceFor(
      std::shared_ptr<vorn::TableView> tableView) override;
  std::shared_ptr<vorn::InboxTableViewDelegate> inboxMessagesTableViewDelegateFor(
      std::shared_ptr<vorn::TableView> tableView,
      std::shared_ptr<vorn::InboxTableViewDataSource> dataSource) override;
  bool setPiIdentifier(const std::optional<std::string>& identifier) override;
  std::optional<std::string> piIdentifier() override;
  void trackMessageOpened(const vorn::Dictionary& userInfo) override;
  void trackPageView(const std::string& url, const std::optional<std::string>& title,
                     const std::optional<std::string>& item,
                     const std::optional<std::string>& search) override;
  void trackCartContents(const vorn::Dictionary& cart) override;
  void trackCartConversion(const vorn::Dictionary& order) override;
  std::optional<vorn::Dictionary> cartItemDictionary(
      const vorn::Decimal& price, std::int64_t quantity, const std::string& item,
      const std::optional<std::string>& uniqueId) override;
  std::optional<vorn::Dictionary> cartDictionary(
      const std::vector<vorn::Dictionary>& cartItem) override;
  std::optional<vorn::Dictionary> orderDictionary(const std::string& orderNumber,
                                                  const vorn::Decimal& shipping,
                                                  const vorn::Decimal& discount,
                                                  const vorn::Dictionary& cart) override;
  void setLocationDelegate(std::shared_ptr<vorn::LocationDelegate> delegate) override;
  std::optional<vorn::Region> regionFrom(const vorn::Dictionary& dictionary) override;
  bool locationEnabled() override;
  void startWatchingLocation() override;
  void stopWatchingLocation() override;
  bool watchingLocation() override;
  std::optional<StringDictionary> lastKnownLocation() override;
  void setURLHandlingDelegate(std::shared_ptr<vorn::URLHandlingDelegate> delegate) override;
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
  void begin();
  /// Runs `work` on the module's queue unless the module is gone or torn down by then.
  void enqueue(std::function<void(PushModule&)> work);
  /// Applies a registration change; a real change schedules a send.
  bool updateRegistration(const std::function<void(RegistrationData&)>& change);
  void scheduleSend();
  void sendRegistration();
  void retryAtDeadline();
  void cancelRetry();
  void fetchInbox(const FetchCompletionHandler& handler);
  bool mark(const std::string& messageId, Inbox::Mark mark);
  void sendMark(const std::string& messageId, Inbox::Mark mark);
  std::string registrationId() const;
  /// The line of an operation this platform cannot perform.
  void unavailable(std::string_view line, vorn::LoggerCategory category) const;
  bool flag(std::string_view key, bool fallback) const;
  void setFlag(std::string_view key, bool value);
  bool setText(std::string_view key, const std::optional<std::string>& text);

  const std::string appId_;
  const PushSettings settings_;
  const std::shared_ptr<vorn::VORNSdkComponents> components_;
  const std::shared_ptr<PushLog> log_;
  const std::shared_ptr<vorn::SecurePrefs> prefs_;
  const std::shared_ptr<PushAuthenticator> authenticator_;
  const std::shared_ptr<vorn::NetworkManager> network_;
  Registration registration_;
  Inbox inbox_;
  vorn::DispatchQueue queue_{std::string(kQueueLabel)};
  // Set by begin(), before the module is handed out.
  std::shared_ptr<PushBehaviorObserver> observer_;
  std::shared_ptr<PushSubscriber> subscriber_;
  std::atomic<bool> tornDown_{false};
  std::atomic<bool> sendQueued_{false};
  std::atomic<bool> retryQueued_{false};
  std::atomic<int> registrationsSent_{0};

  mutable std::mutex mutex_;
  RegistrationCallback registrationCallback_;                       // guarded by mutex_
  vorn::Dictionary notificationUserInfo_;                           // guarded by mutex_
  std::shared_ptr<vorn::InAppMessageEventDelegate> eventDelegate_;  // guarded by mutex_
  std::shared_ptr<vorn::URLHandlingDelegate> urlHandlingDelegate_;  // guarded by mutex_
  vorn::DelayedWork retry_;                                         // guarded by mutex_
};

}  // namespace push

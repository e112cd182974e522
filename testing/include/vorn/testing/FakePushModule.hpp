// FakePushModule: a push module for tests - a FakeModule that also implements PushInterface,
// so that the PUSH facade forwards to it.
//
// It records every PushInterface call with its arguments (FakeCallLog) and answers with
// fixed values that differ from the facade's defaults: true for every truth value, 1 to 4
// for the message counts, a non-empty notificationUserInfo(), and a present value for every
// optional or pointer result - or an absent one after setAnswersAbsent(true). refresh()
// tells its handler `newData` before it answers. registerClass() registers it under
// "VORNSdkPushModule" with a version the PUSH facade accepts.
//
// Thread safety: every member may be called from any thread.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vorn/facades/PushInterface.hpp"
#include "vorn/testing/FakeCallLog.hpp"
#include "vorn/testing/FakeModule.hpp"
#include "vorn/testing/FakeModuleClass.hpp"

namespace vorn::testing {

class FakePushModule : public FakeModule, public PushInterface, public FakeCallLog {
 public:
  using Class = FakeModuleClass<FakePushModule>;

  /// Version "8.1.0"; otherwise FakeModuleSettings' defaults.
  static FakeModuleSettings defaultSettings();
  static void registerClass(FakeModuleSettings settings = defaultSettings());
  /// A module to attach by hand, with no configuration or components.
  static std::shared_ptr<FakePushModule> create(FakeModuleSettings settings = defaultSettings());
  /// The identity getIdentity() answers while answers are present.
  static ModuleIdentity identity();

  FakePushModule(ModuleName name, FakeModuleSettings settings,
                 std::shared_ptr<const ModuleConfig> config,
                 std::shared_ptr<VORNSdkComponents> components);

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
  /// Records the call and gives `present`, or an absent R when answers are absent and R
  /// can be absent.
  template <class R>
  R answer(std::string operation, Array arguments, R present);
};

}  // namespace vorn::testing

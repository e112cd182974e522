// FakePushModule: in-app messages and the inbox.
#include "FakeAnswer.hpp"

namespace vorn::testing {
namespace {

const PushInterface::Messages kMessages{{{"id", "fake-message"}}};

class FakeDataSource final : public InboxTableViewDataSource {
 public:
  std::size_t numberOfRows() const override { return kMessages.size(); }
  Dictionary messageAt(std::size_t row) const override {
    return row < kMessages.size() ? kMessages[row] : Dictionary{};
  }
};

class FakeTableDelegate final : public InboxTableViewDelegate {
 public:
  void didSelectRow(std::size_t) override {}
};

}  // namespace

void FakePushModule::setEventDelegate(std::shared_ptr<InAppMessageEventDelegate> delegate) {
  record("setEventDelegate", {arg(delegate)});
}

std::optional<std::string> FakePushModule::messageId(const Dictionary& forMessage) {
  return answer<std::optional<std::string>>("messageId", {forMessage}, "fake-message-id");
}

void FakePushModule::showInAppMessage(const std::string& messageId) {
  record("showInAppMessage", {messageId});
}

bool FakePushModule::setInAppMessage(const std::optional<std::string>& fontName) {
  return answer("setInAppMessage", {arg(fontName)}, true);
}

std::optional<PushInterface::Messages> FakePushModule::getAllMessages() {
  return answer<std::optional<Messages>>("getAllMessages", {}, kMessages);
}

std::optional<PushInterface::Messages> FakePushModule::getUnreadMessages() {
  return answer<std::optional<Messages>>("getUnreadMessages", {}, kMessages);
}

std::optional<PushInterface::Messages> FakePushModule::getReadMessages() {
  return answer<std::optional<Messages>>("getReadMessages", {}, kMessages);
}

std::optional<PushInterface::Messages> FakePushModule::getDeletedMessages() {
  return answer<std::optional<Messages>>("getDeletedMessages", {}, kMessages);
}

std::size_t FakePushModule::getAllMessagesCount() {
  return answer<std::size_t>("getAllMessagesCount", {}, 1);
}

std::size_t FakePushModule::getUnreadMessagesCount() {
  return answer<std::size_t>("getUnreadMessagesCount", {}, 2);
}

std::size_t FakePushModule::getReadMessagesCount() {
  return answer<std::size_t>("getReadMessagesCount", {}, 3);
}

std::size_t FakePushModule::getDeletedMessagesCount() {
  return answer<std::size_t>("getDeletedMessagesCount", {}, 4);
}

bool FakePushModule::markMessageRead(const Dictionary& message) {
  return answer("markMessageRead", {message}, true);
}

bool FakePushModule::markMessageDeleted(const Dictionary& message) {
  return answer("markMessageDeleted", {message}, true);
}

bool FakePushModule::markMessageWithIdRead(const std::string& messageId) {
  return answer("markMessageWithIdRead", {messageId}, true);
}

bool FakePushModule::markMessageWithIdDeleted(const std::string& messageId) {
  return answer("markMessageWithIdDeleted", {messageId}, true);
}

bool FakePushModule::markAllMessagesRead() {
  return answer("markAllMessagesRead", {}, true);
}

bool FakePushModule::markAllMessagesDeleted() {
  return answer("markAllMessagesDeleted", {}, true);
}

bool FakePushModule::refreshMessages() {
  return answer("refreshMessages", {}, true);
}

std::shared_ptr<InboxTableViewDataSource> FakePushModule::inboxMessagesTableViewDataSourceFor(
    std::shared_ptr<TableView> tableView) {
  return answer<std::shared_ptr<InboxTableViewDataSource>>(
      "inboxMessagesTableViewDataSourceFor", {arg(tableView)}, std::make_shared<FakeDataSource>());
}

std::shared_ptr<InboxTableViewDelegate> FakePushModule::inboxMessagesTableViewDelegateFor(
    std::shared_ptr<TableView> tableView, std::shared_ptr<InboxTableViewDataSource> dataSource) {
  return answer<std::shared_ptr<InboxTableViewDelegate>>("inboxMessagesTableViewDelegateFor",
                                                         {arg(tableView), arg(dataSource)},
                                                         std::make_shared<FakeTableDelegate>());
}

}  // namespace vorn::testing

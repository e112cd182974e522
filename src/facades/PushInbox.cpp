// Push facade: in-app messages and the inbox, each forwarded by the rule in Forwarding.hpp
// with its own not-ready line and default.
#include "facades/Forwarding.hpp"
#include "vorn/facades/PUSH.hpp"

namespace vorn {

using detail::forwardCall;
using I = PushInterface;

void PUSH::setEventDelegate(std::shared_ptr<InAppMessageEventDelegate> delegate) {
  forwardCall(ready(), &I::setEventDelegate, "The `Event Delegate` not set.", std::move(delegate));
}

std::optional<std::string> PUSH::messageId(const Dictionary& forMessage) {
  return forwardCall(ready(), &I::messageId, "The `Message ID` not fetched.", std::nullopt,
                     forMessage);
}

void PUSH::showInAppMessage(const std::string& messageId) {
  forwardCall(ready(), &I::showInAppMessage, "The `In-app message` not shown.", messageId);
}

bool PUSH::setInAppMessage(const std::optional<std::string>& fontName) {
  return forwardCall(ready(), &I::setInAppMessage, "The `In-app message font name` not set.", false,
                     fontName);
}

std::optional<PUSH::Messages> PUSH::getAllMessages() {
  return forwardCall(ready(), &I::getAllMessages, "The `Messages` not fetched.", std::nullopt);
}

std::optional<PUSH::Messages> PUSH::getUnreadMessages() {
  return forwardCall(ready(), &I::getUnreadMessages, "The `Unread Messages` not fetched.",
                     std::nullopt);
}

std::optional<PUSH::Messages> PUSH::getReadMessages() {
  return forwardCall(ready(), &I::getReadMessages, "The `Read Messages` not fetched.",
                     std::nullopt);
}

std::optional<PUSH::Messages> PUSH::getDeletedMessages() {
  return forwardCall(ready(), &I::getDeletedMessages, "The `Deleted Messages` not fetched.",
                     std::nullopt);
}

std::size_t PUSH::getAllMessagesCount() {
  return forwardCall(ready(), &I::getAllMessagesCount, "The `All Messages Count` not fetched.", 0);
}

std::size_t PUSH::getUnreadMessagesCount() {
  return forwardCall(ready(), &I::getUnreadMessagesCount,
                     "The `Unread Messages Count` not fetched.", 0);
}

std::size_t PUSH::getReadMessagesCount() {
  return forwardCall(ready(), &I::getReadMessagesCount, "The `Read Messages Count` not fetched.",
                     0);
}

std::size_t PUSH::getDeletedMessagesCount() {
  return forwardCall(ready(), &I::getDeletedMessagesCount,
                     "The `Deleted Messages Count` not fetched.", 0);
}

bool PUSH::markMessageRead(const Dictionary& message) {
  return forwardCall(ready(), &I::markMessageRead, "The Message not marked as `read`.", false,
                     message);
}

bool PUSH::markMessageDeleted(const Dictionary& message) {
  return forwardCall(ready(), &I::markMessageDeleted, "The Message not marked as `deleted`.", false,
                     message);
}

bool PUSH::markMessageWithIdRead(const std::string& messageId) {
  return forwardCall(ready(), &I::markMessageWithIdRead, "The Message not marked as `read` by ID.",
                     false, messageId);
}

bool PUSH::markMessageWithIdDeleted(const std::string& messageId) {
  return forwardCall(ready(), &I::markMessageWithIdDeleted,
                     "The Message not marked as `deleted` by ID.", false, messageId);
}

bool PUSH::markAllMessagesRead() {
  return forwardCall(ready(), &I::markAllMessagesRead, "The Messages not marked as `read`.", false);
}

bool PUSH::markAllMessagesDeleted() {
  return forwardCall(ready(), &I::markAllMessagesDeleted, "The Messages not marked as `deleted`.",
                     false);
}

bool PUSH::refreshMessages() {
  return forwardCall(ready(), &I::refreshMessages, "The Messages not `refreshed`.", false);
}

std::shared_ptr<InboxTableViewDataSource> PUSH::inboxMessagesTableViewDataSourceFor(
    std::shared_ptr<TableView> tableView) {
  return forwardCall(ready(), &I::inboxMessagesTableViewDataSourceFor,
                     "The `Inbox Messages Table View Data Source For Table View` not set.", nullptr,
                     std::move(tableView));
}

std::shared_ptr<InboxTableViewDelegate> PUSH::inboxMessagesTableViewDelegateFor(
    std::shared_ptr<TableView> tableView, std::shared_ptr<InboxTableViewDataSource> dataSource) {
  return forwardCall(ready(), &I::inboxMessagesTableViewDelegateFor,
                     "The `Inbox Messages Table View Delegate For Table View` not set.", nullptr,
                     std::move(tableView), std::move(dataSource));
}

}  // namespace vorn

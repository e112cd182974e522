// The inbox operations: the fetch, the queries and the marks.
#include "PushModule.hpp"

#include "PushRequests.hpp"

namespace push {
namespace {

std::optional<std::string> idOf(const vorn::Dictionary& message) {
  const auto it = message.find("id");
  const std::string* id = it == message.end() ? nullptr : it->second.get<std::string>();
  return id ? std::optional<std::string>(*id) : std::nullopt;
}

}  // namespace

bool PushModule::refresh(FetchCompletionHandler fetchCompletionHandler) {
  if (tornDown_.load()) {
    log_->debug("The push module is torn down; nothing is fetched.");
    return false;
  }
  if (!isInboxEnabled()) {
    log_->debug("The inbox is disabled; nothing is fetched.");
    return false;
  }
  enqueue([handler = std::move(fetchCompletionHandler)](PushModule& module) {
    module.fetchInbox(handler);
  });
  return true;
}

bool PushModule::refreshMessages() {
  return refresh(nullptr);
}

void PushModule::fetchInbox(const FetchCompletionHandler& handler) {
  const auto finish = [&handler](vorn::BackgroundFetchResult result) {
    if (handler)
      handler(result);
  };
  auto request = requests::inbox(settings_.endpoint);
  if (!request)
    return finish(vorn::BackgroundFetchResult::failed);
  const vorn::CompletedCall call = network_->executeSync(std::move(*request));
  const std::optional<nlohmann::json> answer = requests::jsonAnswer(call);
  std::optional<Inbox::Messages> messages = answer ? Inbox::parse(*answer) : std::nullopt;
  if (!messages) {
    log_->debug("Inbox refresh failed: " + requests::outcome(call) + ".");
    return finish(vorn::BackgroundFetchResult::failed);
  }
  const std::size_t count = messages->size();
  const bool changed = inbox_.replace(std::move(*messages));
  log_->debug("Inbox refreshed: " + std::to_string(count) + " messages.");
  finish(changed ? vorn::BackgroundFetchResult::newData : vorn::BackgroundFetchResult::noData);
}

std::optional<PushModule::Messages> PushModule::getAllMessages() {
  return inbox_.all();
}

std::optional<PushModule::Messages> PushModule::getUnreadMessages() {
  return inbox_.unread();
}

std::optional<PushModule::Messages> PushModule::getReadMessages() {
  return inbox_.read();
}

std::optional<PushModule::Messages> PushModule::getDeletedMessages() {
  return inbox_.deleted();
}

std::size_t PushModule::getAllMessagesCount() {
  return inbox_.allCount();
}

std::size_t PushModule::getUnreadMessagesCount() {
  return inbox_.unread().size();
}

std::size_t PushModule::getReadMessagesCount() {
  return inbox_.read().size();
}

std::size_t PushModule::getDeletedMessagesCount() {
  return inbox_.deleted().size();
}

bool PushModule::markMessageRead(const vorn::Dictionary& message) {
  return mark(idOf(message).value_or(""), Inbox::Mark::read);
}

bool PushModule::markMessageDeleted(const vorn::Dictionary& message) {
  return mark(idOf(message).value_or(""), Inbox::Mark::deleted);
}

bool PushModule::markMessageWithIdRead(const std::string& messageId) {
  return mark(messageId, Inbox::Mark::read);
}

bool PushModule::markMessageWithIdDeleted(const std::string& messageId) {
  return mark(messageId, Inbox::Mark::deleted);
}

bool PushModule::markAllMessagesRead() {
  for (const std::string& id : inbox_.markAll(Inbox::Mark::read))
    sendMark(id, Inbox::Mark::read);
  return true;
}

bool PushModule::markAllMessagesDeleted() {
  for (const std::string& id : inbox_.markAll(Inbox::Mark::deleted))
    sendMark(id, Inbox::Mark::deleted);
  return true;
}

bool PushModule::mark(const std::string& messageId, Inbox::Mark mark) {
  bool changed = false;
  if (!inbox_.mark(messageId, mark, changed)) {
    log_->debug("Message `" + messageId + "` is not in the inbox.");
    return false;
  }
  if (changed)
    sendMark(messageId, mark);
  return true;
}

void PushModule::sendMark(const std::string& messageId, Inbox::Mark mark) {
  enqueue([messageId, mark](PushModule& module) {
    const std::string& endpoint = module.settings_.endpoint;
    auto request = mark == Inbox::Mark::read ? requests::markRead(endpoint, messageId)
                                             : requests::markDeleted(endpoint, messageId);
    if (!request)
      return;
    const vorn::CompletedCall call = module.network_->executeSync(std::move(*request));
    if (!call.wrappedResponse.isSuccess())
      module.log_->debug("Marking message `" + messageId + "` failed: " + requests::outcome(call) +
                         ".");
  });
}

}  // namespace push

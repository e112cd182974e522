#include "Inbox.hpp"

namespace push {
namespace {

bool flag(const vorn::Dictionary& message, const char* key) {
  const auto it = message.find(key);
  return it != message.end() && it->second.get<bool>() && *it->second.get<bool>();
}

const char* markKey(Inbox::Mark mark) {
  return mark == Inbox::Mark::read ? "read" : "deleted";
}

std::string idOf(const vorn::Dictionary& message) {
  const auto it = message.find("id");
  const std::string* id = it == message.end() ? nullptr : it->second.get<std::string>();
  return id ? *id : std::string();
}

}  // namespace

std::optional<Inbox::Messages> Inbox::parse(const nlohmann::json& answer) {
  if (!answer.is_object() || !answer.contains("messages") || !answer["messages"].is_array())
    return std::nullopt;
  Messages messages;
  for (const auto& entry : answer["messages"]) {
    if (!entry.is_object() || !entry.contains("id") || !entry["id"].is_string())
      continue;
    const auto subject = entry.find("subject");
    const auto read = entry.find("read");
    messages.push_back(
        {{"id", entry["id"].get<std::string>()},
         {"subject", subject != entry.end() && subject->is_string() ? subject->get<std::string>()
                                                                    : std::string()},
         {"read", read != entry.end() && read->is_boolean() && read->get<bool>()},
         {"deleted", false}});
  }
  return messages;
}

bool Inbox::replace(Messages messages) {
  std::lock_guard lock(mutex_);
  if (messages == messages_)
    return false;
  messages_ = std::move(messages);
  return true;
}

template <class Keep>
Inbox::Messages Inbox::select(Keep keep) const {
  std::lock_guard lock(mutex_);
  Messages selected;
  for (const auto& message : messages_)
    if (keep(flag(message, "read"), flag(message, "deleted")))
      selected.push_back(message);
  return selected;
}

Inbox::Messages Inbox::all() const {
  return select([](bool, bool deleted) { return !deleted; });
}

Inbox::Messages Inbox::unread() const {
  return select([](bool read, bool deleted) { return !read && !deleted; });
}

Inbox::Messages Inbox::read() const {
  return select([](bool read, bool deleted) { return read && !deleted; });
}

Inbox::Messages Inbox::deleted() const {
  return select([](bool, bool deleted) { return deleted; });
}

std::size_t Inbox::allCount() const {
  return all().size();
}

bool Inbox::mark(const std::string& id, Mark mark, bool& changed) {
  std::lock_guard lock(mutex_);
  for (auto& message : messages_) {
    if (idOf(message) != id)
      continue;
    changed = !flag(message, markKey(mark));
    message[markKey(mark)] = true;
    return true;
  }
  changed = false;
  return false;
}

std::vector<std::string> Inbox::markAll(Mark mark) {
  std::lock_guard lock(mutex_);
  std::vector<std::string> changed;
  for (auto& message : messages_) {
    if (flag(message, markKey(mark)) || flag(message, "deleted"))
      continue;
    message[markKey(mark)] = true;
    changed.push_back(idOf(message));
  }
  return changed;
}

}  // namespace push

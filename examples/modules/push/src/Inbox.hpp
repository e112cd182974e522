// Inbox: the inbox messages the module last fetched, with the marks made since.
//
// A message is a Dictionary with "id" (text), "subject" (text), "read" and "deleted"
// (booleans). "All" messages are those not deleted; read and unread split them; deleted ones
// stay listed as deleted until the next fetch replaces the list.
//
// Thread safety: every member may be called from any thread; one mutex guards the list.
#pragma once

#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "vorn/base/Value.hpp"

namespace push {

class Inbox {
 public:
  using Messages = std::vector<vorn::Dictionary>;
  enum class Mark { read, deleted };

  /// The messages of a /v1/inbox answer ({"messages": [{"id", "subject", "read"}]}); entries
  /// without a text id are skipped. Nothing when the answer has no message list.
  static std::optional<Messages> parse(const nlohmann::json& answer);

  /// Replaces the list; true when it differs from the one held.
  bool replace(Messages messages);

  Messages all() const;
  Messages unread() const;
  Messages read() const;
  Messages deleted() const;
  std::size_t allCount() const;

  /// Marks the message `id`: true when it is known (and now marked), false when it is not.
  /// `changed` tells whether the mark is new, i.e. whether the back end must hear of it.
  bool mark(const std::string& id, Mark mark, bool& changed);
  /// Marks every message not marked yet; the ids of those that changed.
  std::vector<std::string> markAll(Mark mark);

 private:
  template <class Keep>
  Messages select(Keep keep) const;

  mutable std::mutex mutex_;
  Messages messages_;  // guarded by mutex_
};

}  // namespace push

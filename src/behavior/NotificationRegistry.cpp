#include "behavior/NotificationRegistry.hpp"

#include <algorithm>

namespace vorn::detail {

bool NotificationObserverEntry::enter() {
  std::lock_guard lock(mutex_);
  if (removed_)
    return false;
  callers_.push_back(std::this_thread::get_id());
  return true;
}

void NotificationObserverEntry::leave() {
  std::lock_guard lock(mutex_);
  callers_.erase(std::find(callers_.begin(), callers_.end(), std::this_thread::get_id()));
  left_.notify_all();
}

void NotificationObserverEntry::retire() {
  const auto self = std::this_thread::get_id();
  std::unique_lock lock(mutex_);
  removed_ = true;
  // The removing thread's own calls are further up its stack: waiting for them would never end.
  left_.wait(lock, [&] {
    return std::all_of(callers_.begin(), callers_.end(), [&](auto id) { return id == self; });
  });
}

std::vector<std::shared_ptr<NotificationObserverEntry>> NotificationRegistry::observersOf(
    std::string_view name) const {
  std::lock_guard lock(mutex_);
  const auto found = observers_.find(name);
  return found == observers_.end() ? Entries{} : found->second;
}

void NotificationRegistry::add(std::shared_ptr<NotificationObserverEntry> entry) {
  std::lock_guard lock(mutex_);
  auto& entries = observers_[entry->name];
  entries.push_back(std::move(entry));
}

void NotificationRegistry::remove(const NotificationObserverEntry& entry) {
  std::lock_guard lock(mutex_);
  const auto found = observers_.find(entry.name);
  if (found == observers_.end())
    return;
  std::erase_if(found->second, [&](const auto& held) { return held.get() == &entry; });
  if (found->second.empty())
    observers_.erase(found);
}

std::size_t NotificationRegistry::count(std::string_view name) const {
  std::lock_guard lock(mutex_);
  const auto found = observers_.find(name);
  return found == observers_.end() ? 0 : found->second.size();
}

}  // namespace vorn::detail

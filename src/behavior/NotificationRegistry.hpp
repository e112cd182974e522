// The state behind a NotificationCenter: its observers by name, and each observer's record of
// the calls under way, which removal waits on.
#pragma once

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "vorn/behavior/NotificationCenter.hpp"

namespace vorn::detail {

struct NotificationObserverEntry {
  NotificationObserverEntry(std::string observedName, NotificationCenter::Callback call)
      : name(std::move(observedName)), callback(std::move(call)) {}

  /// Starts a call on this thread; false once the observer is removed.
  bool enter();
  /// Ends the call enter() started on this thread.
  void leave();
  /// Marks the observer removed, then waits until no other thread is inside its callback.
  void retire();

  const std::string name;
  const NotificationCenter::Callback callback;

 private:
  std::mutex mutex_;
  std::condition_variable left_;
  bool removed_ = false;                  // guarded by mutex_
  std::vector<std::thread::id> callers_;  // guarded by mutex_; one element per call under way
};

struct NotificationRegistry {
  /// The observers of `name` now, in registration order.
  std::vector<std::shared_ptr<NotificationObserverEntry>> observersOf(std::string_view name) const;
  void add(std::shared_ptr<NotificationObserverEntry> entry);
  /// Takes the entry off the list; calls under way are the entry's own business.
  void remove(const NotificationObserverEntry& entry);
  std::size_t count(std::string_view name) const;

 private:
  using Entries = std::vector<std::shared_ptr<NotificationObserverEntry>>;

  mutable std::mutex mutex_;
  std::map<std::string, Entries, std::less<>> observers_;  // guarded by mutex_
};

}  // namespace vorn::detail

// NotificationCenter: named notifications posted by the host (app lifecycle, screens) and
// delivered to observers registered under that name, on the posting thread.
//
// Observers are matched by name only; there is no sender filter. A post calls the observers
// registered under its name when it starts, in registration order; one added during the post
// is first called by the next post.
//
// Removal contract. addObserver() returns an ObserverToken; removeObserver(token), or the
// token's destruction, removes the observer. Once that returns, the callback is never called
// again, and it is not running on any other thread either: removal waits for calls already
// under way on other threads to return. A call under way on the removing thread itself (a
// callback removing itself, or destroying its own token) is not waited for, so a callback may
// remove itself or any other observer, and may post again, without deadlock: no lock of the
// centre is held while a callback runs. The one thing that does deadlock is two callbacks on
// two threads each removing the other's observer while both are running; the library never
// does that.
//
// Ownership: defaultCenter() is the process-wide centre and is never destroyed; other centres
// (tests) are held by std::shared_ptr. A token may outlive its centre; destroying it then does
// nothing. Thread safety: every call may come from any thread, including from inside a
// callback; observers may be added on one thread while another posts.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vorn/base/Export.hpp"
#include "vorn/base/Value.hpp"

namespace vorn {

struct Notification {
  std::string name;
  std::optional<Dictionary> userInfo;
};

namespace detail {
struct NotificationRegistry;
struct NotificationObserverEntry;
}  // namespace detail

/// Keeps one observer registered. Move-only; destroying it removes the observer.
class VORN_API ObserverToken {
 public:
  ObserverToken() = default;
  ObserverToken(std::weak_ptr<detail::NotificationRegistry> registry,
                std::shared_ptr<detail::NotificationObserverEntry> entry);
  ObserverToken(ObserverToken&& other) noexcept = default;
  ObserverToken& operator=(ObserverToken&& other) noexcept;
  ~ObserverToken();

  /// Whether the token still keeps an observer registered.
  bool active() const noexcept { return entry_ != nullptr; }
  /// Removes the observer now (see the removal contract above); then the token is inactive.
  void reset();

 private:
  std::weak_ptr<detail::NotificationRegistry> registry_;
  std::shared_ptr<detail::NotificationObserverEntry> entry_;
};

class VORN_API NotificationCenter {
 public:
  using Callback = std::function<void(const Notification&)>;

  /// The process-wide centre the host posts to; never destroyed.
  static std::shared_ptr<NotificationCenter> defaultCenter();

  NotificationCenter();
  ~NotificationCenter();
  NotificationCenter(const NotificationCenter&) = delete;
  NotificationCenter& operator=(const NotificationCenter&) = delete;

  /// Calls every observer of `name` on this thread, in registration order.
  void post(std::string_view name, std::optional<Dictionary> userInfo = std::nullopt);
  /// Registers `callback` for notifications named `name`; keep the token to stay registered.
  [[nodiscard]] ObserverToken addObserver(std::string_view name, Callback callback);
  /// Same as token.reset().
  void removeObserver(ObserverToken& token);
  /// How many observers are registered under `name`.
  std::size_t observerCount(std::string_view name) const;

 private:
  const std::shared_ptr<detail::NotificationRegistry> registry_;
};

}  // namespace vorn

// EventBus: carries events from producers (the app through the SDK, the SDK itself, the
// feature modules) to the subscribed modules.
//
// Each event becomes a Message. A subscribed module gets it through its Subscription's own
// delivery queue; a module that is still initializing gets it buffered (at most 100 per
// module) until the SDK core calls sendBufferedMessages() or clearBuffer() with the module's
// outcome. Everything else is dropped with a log line: nothing is reported to the caller.
//
// Module statuses come from a status source the SDK core installs at start-up; until then
// every module reads as `inactive`. The bus never includes the facades.
//
// State is process-wide and lives for the whole process. One lock guards the subscription
// table and the buffer table; each read copies a table out under it and each write stores
// a whole new table under it, so a read-modify-write (subscribe, unsubscribe, buffering) is
// two separate critical sections. Concurrent subscribe() calls, or concurrent buffering for
// one module, can therefore lose an update - long-standing behaviour the SDK core relies on
// not to matter, as it starts and subscribes modules from one start-up queue.
//
// Thread safety: every operation may be called from any thread. Subscribers receive on
// their delivery queue's threads, never on the publisher's.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "vorn/base/Export.hpp"
#include "vorn/base/ModuleName.hpp"
#include "vorn/base/ModuleStatus.hpp"
#include "vorn/events/Event.hpp"
#include "vorn/messaging/Message.hpp"
#include "vorn/messaging/MessageProducer.hpp"
#include "vorn/messaging/Subscriber.hpp"
#include "vorn/messaging/Subscription.hpp"

namespace vorn {

class VORN_API EventBus {
 public:
  using StatusSource = std::function<ModuleStatus(ModuleName)>;
  using SubscriptionTable = std::map<ModuleName, std::shared_ptr<Subscription>>;
  using BufferTable = std::map<ModuleName, std::vector<std::shared_ptr<const Message>>>;

  EventBus() = delete;

  static constexpr std::size_t kMaxBufferedMessages = 100;

  /// Installs where module statuses are read; an empty function restores "all inactive".
  static void setStatusSource(StatusSource source);

  /// Sends the event to every subscribed module, then buffers it for modules still
  /// initializing. A null event is ignored.
  static void publish(MessageProducer producer, std::shared_ptr<const Event> event);
  /// Sends the event to one module, or buffers it when that module is initializing and not
  /// subscribed. A null event is ignored.
  static void publishTo(ModuleName target, MessageProducer producer,
                        std::shared_ptr<const Event> event);

  /// Registers the subscriber's module, replacing an earlier subscription for it, only when
  /// the module is operational. A null subscriber is ignored.
  static void subscribe(const std::shared_ptr<Subscriber>& subscriber);
  /// Removes the subscriber's module from the table; queued deliveries still run.
  static void unsubscribe(const std::shared_ptr<Subscriber>& subscriber);

  /// For the SDK core, once the module has initialized: hands the module's buffered
  /// messages, oldest first, to its subscription. The buffer is kept, so a second call
  /// hands them over again. Without a subscription the buffer is cleared instead.
  static void sendBufferedMessages(ModuleName module);
  /// For the SDK core, when the module failed to initialize: drops its buffered messages.
  static void clearBuffer(ModuleName module);

  /// Copies of the current tables, for inspection.
  static SubscriptionTable subscriptions();
  static BufferTable buffers();
};

}  // namespace vorn

#include "vorn/messaging/EventBus.hpp"

#include <mutex>
#include <string>

#include "vorn/logging/Log.hpp"

namespace vorn {
namespace {

// The bus's global state. Tables are immutable snapshots replaced whole, so a read is one
// pointer copy under the lock however large the buffers grow.
struct BusState {
  std::mutex mutex;
  std::shared_ptr<const EventBus::SubscriptionTable> subscriptions =
      std::make_shared<const EventBus::SubscriptionTable>();  // guarded by mutex
  std::shared_ptr<const EventBus::BufferTable> buffers =
      std::make_shared<const EventBus::BufferTable>();  // guarded by mutex

  std::mutex statusMutex;
  std::shared_ptr<const EventBus::StatusSource> statusSource;  // guarded by statusMutex
};

// Never destroyed, so a delivery finishing during exit cannot touch a dead table.
BusState& bus() {
  static BusState* const state = new BusState;
  return *state;
}

std::shared_ptr<const EventBus::SubscriptionTable> readSubscriptions() {
  std::lock_guard lock(bus().mutex);
  return bus().subscriptions;
}

void writeSubscriptions(EventBus::SubscriptionTable table) {
  auto value = std::make_shared<const EventBus::SubscriptionTable>(std::move(table));
  std::lock_guard lock(bus().mutex);
  bus().subscriptions.swap(value);
}

std::shared_ptr<const EventBus::BufferTable> readBuffers() {
  std::lock_guard lock(bus().mutex);
  return bus().buffers;
}

void writeBuffers(EventBus::BufferTable table) {
  auto value = std::make_shared<const EventBus::BufferTable>(std::move(table));
  std::lock_guard lock(bus().mutex);
  bus().buffers.swap(value);
}

ModuleStatus statusOf(ModuleName module) {
  std::shared_ptr<const EventBus::StatusSource> source;
  {
    std::lock_guard lock(bus().statusMutex);
    source = bus().statusSource;
  }
  return source ? (*source)(module) : ModuleStatus::inactive;
}

std::string nameOf(ModuleName module) {
  return std::string(rawValue(module));
}

// Empty once the module has released its subscriber.
std::string subscriberName(const Subscription& subscription) {
  const std::shared_ptr<Subscriber> subscriber = subscription.subscriber();
  return subscriber ? nameOf(subscriber->name()) : std::string();
}

void bufferForModule(ModuleName module, const std::shared_ptr<const Message>& message) {
  if (readSubscriptions()->contains(module))
    return;
  if (rawValue(statusOf(module)) != "initializing")
    return;
  VORN_LOG_DEBUG(LoggerCategory::eventBus, "Adding message " + message->id() +
                                               " to a buffer for `" + nameOf(module) +
                                               "`. Module initializing.");
  if (!readBuffers()->contains(module)) {
    EventBus::BufferTable table = *readBuffers();
    table.emplace(module, EventBus::BufferTable::mapped_type{});
    writeBuffers(std::move(table));
  }
  EventBus::BufferTable table = *readBuffers();
  auto& list = table[module];
  if (list.size() >= EventBus::kMaxBufferedMessages) {
    VORN_LOG_DEBUG(LoggerCategory::eventBus, "Adding message " + message->id() + " to the `" +
                                                 nameOf(module) +
                                                 "` buffer failed. Buffer is full.");
    return;
  }
  list.push_back(message);
  writeBuffers(std::move(table));
}

}  // namespace

void EventBus::setStatusSource(StatusSource source) {
  auto value = source ? std::make_shared<const StatusSource>(std::move(source)) : nullptr;
  std::lock_guard lock(bus().statusMutex);
  bus().statusSource.swap(value);
}

void EventBus::publish(MessageProducer producer, std::shared_ptr<const Event> event) {
  if (!event)
    return;
  VORN_LOG_DEBUG(LoggerCategory::eventBus,
                 "Message `" + event->name() + "` received on the event bus.");
  const std::shared_ptr<const Message> message = Message::makeFrom(producer, event);

  // Keep the snapshot alive for the whole loop: a range over *readSubscriptions() would
  // destroy it before the first iteration.
  const auto subscriptions = readSubscriptions();
  for (const auto& [module, subscription] : *subscriptions) {
    VORN_LOG_DEBUG(LoggerCategory::eventBus, "Message `" + event->name() + "` send to `" +
                                                 subscriberName(*subscription) + "`");
    subscription->send(message);
  }

  if (readSubscriptions()->size() > 1) {
    VORN_LOG_DEBUG(LoggerCategory::eventBus, "Nothing to buffer. All modules are operational.");
    return;
  }
  bufferForModule(ModuleName::cdp, message);
  bufferForModule(ModuleName::push, message);
}

void EventBus::publishTo(ModuleName target, MessageProducer producer,
                         std::shared_ptr<const Event> event) {
  if (!event)
    return;
  const std::shared_ptr<const Message> message = Message::makeFrom(producer, std::move(event));
  const auto subscriptions = readSubscriptions();
  if (const auto found = subscriptions->find(target); found != subscriptions->end()) {
    found->second->send(message);
    return;
  }
  VORN_LOG_WARNING(LoggerCategory::eventBus,
                   "Module `" + nameOf(target) + "` is not subscribed to receive events.");
  bufferForModule(target, message);
}

void EventBus::subscribe(const std::shared_ptr<Subscriber>& subscriber) {
  if (!subscriber)
    return;
  const ModuleName module = subscriber->name();
  if (rawValue(statusOf(module)) != "operational") {
    VORN_LOG_DEBUG(LoggerCategory::eventBus,
                   "Module `" + nameOf(module) +
                       "` not subscribed to receive events. Module is not operational.");
    return;
  }
  VORN_LOG_DEBUG(LoggerCategory::eventBus,
                 "Module `" + nameOf(module) + "` subscribed to receive events.");
  SubscriptionTable table = *readSubscriptions();
  table.insert_or_assign(module, std::make_shared<Subscription>(subscriber));
  writeSubscriptions(std::move(table));
}

void EventBus::unsubscribe(const std::shared_ptr<Subscriber>& subscriber) {
  if (!subscriber)
    return;
  const ModuleName module = subscriber->name();
  VORN_LOG_DEBUG(LoggerCategory::eventBus,
                 "Module `" + nameOf(module) + "` unsubscribed from receiving events.");
  SubscriptionTable table = *readSubscriptions();
  table.erase(module);
  writeSubscriptions(std::move(table));
}

void EventBus::sendBufferedMessages(ModuleName module) {
  const auto buffers = readBuffers();
  const auto list = buffers->find(module);
  if (list == buffers->end())
    return;
  const auto subscriptions = readSubscriptions();
  const auto subscription = subscriptions->find(module);
  if (subscription == subscriptions->end()) {
    VORN_LOG_DEBUG(LoggerCategory::eventBus, "Sedning buffered messages to `" + nameOf(module) +
                                                 "` failed. Subscription not found.");
    clearBuffer(module);
    return;
  }
  VORN_LOG_DEBUG(LoggerCategory::eventBus,
                 "Sedning buffered messages to `" + nameOf(module) + "`. Module initialized.");
  for (const auto& message : list->second)
    subscription->second->send(message);
}

void EventBus::clearBuffer(ModuleName module) {
  VORN_LOG_DEBUG(LoggerCategory::eventBus, "Clearing message buffer for `" + nameOf(module) +
                                               "`. Module failed to subscribe.");
  BufferTable table = *readBuffers();
  table.erase(module);
  writeBuffers(std::move(table));
}

EventBus::SubscriptionTable EventBus::subscriptions() {
  return *readSubscriptions();
}

EventBus::BufferTable EventBus::buffers() {
  return *readBuffers();
}

}  // namespace vorn

#include "vorn/behavior/NotificationCenter.hpp"

#include "behavior/NotificationRegistry.hpp"

namespace vorn {
namespace {

// Ends a call begun with enter(), also when the callback throws.
class CallScope {
 public:
  explicit CallScope(detail::NotificationObserverEntry& entry) : entry_(entry) {}
  ~CallScope() { entry_.leave(); }
  CallScope(const CallScope&) = delete;
  CallScope& operator=(const CallScope&) = delete;

 private:
  detail::NotificationObserverEntry& entry_;
};

}  // namespace

ObserverToken::ObserverToken(std::weak_ptr<detail::NotificationRegistry> registry,
                             std::shared_ptr<detail::NotificationObserverEntry> entry)
    : registry_(std::move(registry)), entry_(std::move(entry)) {}

ObserverToken& ObserverToken::operator=(ObserverToken&& other) noexcept {
  if (this != &other) {
    reset();
    registry_ = std::move(other.registry_);
    entry_ = std::move(other.entry_);
  }
  return *this;
}

ObserverToken::~ObserverToken() {
  reset();
}

void ObserverToken::reset() {
  if (!entry_)
    return;
  if (const auto registry = registry_.lock())
    registry->remove(*entry_);
  entry_->retire();
  entry_.reset();
  registry_.reset();
}

std::shared_ptr<NotificationCenter> NotificationCenter::defaultCenter() {
  // Never destroyed, so a host thread posting during exit never finds it gone.
  static const auto* center =
      new std::shared_ptr<NotificationCenter>(std::make_shared<NotificationCenter>());
  return *center;
}

NotificationCenter::NotificationCenter()
    : registry_(std::make_shared<detail::NotificationRegistry>()) {}

NotificationCenter::~NotificationCenter() = default;

void NotificationCenter::post(std::string_view name, std::optional<Dictionary> userInfo) {
  const Notification notification{std::string(name), std::move(userInfo)};
  for (const auto& entry : registry_->observersOf(name)) {
    if (!entry->enter())
      continue;
    const CallScope scope(*entry);
    entry->callback(notification);
  }
}

ObserverToken NotificationCenter::addObserver(std::string_view name, Callback callback) {
  auto entry =
      std::make_shared<detail::NotificationObserverEntry>(std::string(name), std::move(callback));
  registry_->add(entry);
  return ObserverToken(registry_, std::move(entry));
}

void NotificationCenter::removeObserver(ObserverToken& token) {
  token.reset();
}

std::size_t NotificationCenter::observerCount(std::string_view name) const {
  return registry_->count(name);
}

}  // namespace vorn
